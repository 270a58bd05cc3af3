#include "bounds/pqueue.h"

#include "support.h"

using PriorityQueueTest = SceneTest;

static PQEntry queue[8];

TEST_F(PriorityQueueTest, TiesComeOutInTheSettledOrder)
{
    // The keys, and the order in which they come out, the first inserted being a. Of several equal keys the
    // top one stays, then the last one is put there and stays; of two equal children the right one rises.
    const std::pair<std::vector<double>, std::string> cases[] = {
        {{3, 1, 2}, "bca"}, {{1, 1, 1, 1}, "adcb"}, {{0, 1, 1, 2}, "acbd"}, {{0, 2, 1, 2, 1}, "acebd"}};
    for (const auto& [keys, expected] : cases) {
        Object nodes[8];
        int count = 0;
        for (size_t i = 0; i < keys.size(); ++i)
            priorityQueueInsert(keys[i], &nodes[i], queue, &count);
        std::string order;
        while (count > 0) {
            double key;
            const Object* node;
            priorityQueueDelete(&key, &node, queue, &count);
            order += "abcde"[node - nodes];
            EXPECT_EQ(key, keys[static_cast<size_t>(node - nodes)]);
        }
        EXPECT_EQ(order, expected);
    }
}

TEST_F(PriorityQueueTest, EndsTheProcessWhenFullOrEmpty)
{
    const std::string advice = "\n Please use the -pqs or --pqsize switch to "
                               "increase the priority queue size\n";
    iPQSize = 4;
    int count = 0;
    for (const double key : {3.0, 2.0, 1.0})
        priorityQueueInsert(key, nullptr, queue, &count);
    const Outcome full = inChild([&] { priorityQueueInsert(0.0, nullptr, queue, &count); });
    count = 0;
    const Outcome empty = inChild([&] { priorityQueueDelete(&queue[0].key, &queue[0].node, queue, &count); });
    EXPECT_EQ(full.status * 10 + empty.status, 11);
    EXPECT_EQ(full.err + empty.out,
              "\n\n VARLO is out of space..." + advice + " Priority queue is empty, dying..." + advice);
}

#include "core/records.h"

#include "core/data.h"
#include "support.h"

#include <span>

TEST(RecordsTest, RecordsAreZeroedAlignedAndApart)
{
    std::vector<std::span<char>> records;
    for (const size_t size :
         std::initializer_list<size_t>{8, 1, 100, 260000, 300000, 5, 262144, 16, 262128, 16})
        records.emplace_back(static_cast<char*>(newRecord(size)), size);
    for (int i = 0; i < 200; ++i) // on into large pages
        records.emplace_back(static_cast<char*>(newRecord(250000)), 250000);
    for (const auto& record : records) {
        SCOPED_TRACE(record.size());
        EXPECT_EQ(reinterpret_cast<uintptr_t>(record.data()) % alignof(Object), 0U);
        EXPECT_EQ(std::ranges::count(record, 0), std::ssize(record));
        std::ranges::fill(record, 1); // of another record that it reaches into, this is seen
    }
}

#include "messages.h"
#include "output.h"
#include "progress.h"
#include "scene.h"

static bool run(const Options& options)
{
    Model& model = *new Model; // for good: to give a million faces back one by one serves nobody
    if (!readModel(options, model) || !openOutput(options.output))
        return false;
    showPhase("writing");
    if (options.list)
        putList(options, model);
    else
        putScene(options, model);
    return finishOutput();
}

int main(int argc, char** argv)
{
    Options options;
    readOptions(argc, argv, options);
    setMessageFile(options.input);
    const bool good = run(options);
    endProgress();
    return good ? 0 : 1;
}

#include "core/progress.h"

#include "core/settings.h"

#include <algorithm>
#include <cstdio>

void showProgressInit()
{
    // A height that is a multiple of 10 gives 10 marks of six columns, another one mostly 11.
    if (myDisplay.height % 10 == 0)
        printf("\n 0%%------------------------------------------------------100%%\n ");
    else
        printf("\n 0%%------------------------------------------------------------100%%\n ");
}

void showProgress(int row)
{
    if (row % std::max(myDisplay.height / 10, 1) == 0) {
        fputs("\xB1\xB1\xB1\xB1\xB1\xB1", stdout);
        fflush(stdout);
    }
}

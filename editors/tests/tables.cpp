#include "core/args.h"
#include "scene/keywords.h"

#include <cstdio>

// Prints the tables of the program: a line for each word that the scanner finds, and for each form of an
// option.

int main()
{
    for (int row = 0; row < NUM_FOUND_KEYWORDS; ++row)
        printf("keyword %s\n", liste_motcle[row].texte);
    for (const Option& option : options)
        for (const char* form : option.forms)
            printf("option %s\n", form);
    return 0;
}

#include "scene/lexer.h"

#include "support.h"

using LexerTest = SceneTest;

static const std::string LONGEST(255, '1');

/// All tokens of a text, and the line behind them.
static std::string tokensOf(const std::string& text)
{
    std::string tokens;
    comptligne = 1;
    FILE* stream = streamOf(text);
    while (Lire_MotCle(stream) != TOKEN_EOF)
        tokens += std::to_string(mot_cle) + ":" + chaine + " ";
    return tokens + std::to_string(comptligne);
}

TEST_F(LexerTest, Tokens)
{
    for (const auto& row : rowsOf("\t\v\f\r~{}<>#\"|10: 11: 12: 13: 14: 15: 2\n"
                                  "radius-1 radius.5|502:radius 1:-1 0:radius.5 1\n"
                                  "center<1~|501:center 12: 1:1 2\n"
                                  "12ab a1|1:12 0:ab 0:a1 1\n"
                                  "C:\\a_b.c Up up|0:C:\\a_b.c 0:Up 103:up 1\n"
                                  "+1.5e-3-.E2f|1:+1.5e-3-.E2 0:f 1\n"
                                  "up; <~; = [~up|103:up 103:up 3\n"
                                  "[ a [~ ; ~]up|103:up 3\n"
                                  "up;no line end|103:up 1\n" +
                                  LONGEST + " a|1:" + LONGEST + " 0:a 1"))
        EXPECT_EQ(tokensOf(row[0]), row[1]);
}

TEST_F(LexerTest, NumbersAreWhatTheLibraryMakesOfThem)
{
    std::istringstream words("1e3 2.9 1-2 +.5 -7.5 - + . -- +-1 -+1 ++1 +3 1.2.3 "
                             "1e 1e+ 5e-1.5 .e1 007 0.1 1e-320 .-5 --5 1.-5 "
                             "123456789.012345 -1234567890.123456 123456789012345678901 "
                             "1e-999 1e999 -1e999 4294967297 "
                             "99999999999999999999 -99999999999999999999");
    for (std::string word; words >> word;) {
        SCOPED_TRACE(word);
        Lire_Decimal(streamOf(word));
        EXPECT_EQ(val_DBL, strtod(word.c_str(), nullptr));
        Lire_Entier(streamOf(word));
        EXPECT_EQ(val_INT, static_cast<int>(strtol(word.c_str(), nullptr, 10)));
    }
}

TEST_F(LexerTest, Faults)
{
    void (*const readers[])(FILE*) = {Lire_Chaine, Lire_Decimal, Lire_Entier, Lire_Vecteur, Lire_RVB};
    const std::string stop = "\n Syntaxic analyser stopped on character: '";
    for (const auto& row : rowsOf("0|a| string expected\n"
                                  "0|\"a b\"| '\"' string delimiter expected\n"
                                  "0|\"1a\"| '\"' string delimiter expected\n"
                                  "1|~~up| Decimal value expected\n"
                                  "2|; 1| Integer value expected\n"
                                  "3|1 0 0| Opening backet '<' expected before x component\n"
                                  "3|<>| x component expected\n"
                                  "3|<1 <| y component expected\n"
                                  "3|<1 2 a| z componente expected\n"
                                  "3|<1 2 3 4>| Closing bracket '>' expected after z component\n"
                                  "4|<1 0 0>| Red component expected\n"
                                  "4|1 {| Green component expected\n"
                                  "4|1 1~#| Blue component expeced\n"
                                  "4|# nothing| Color declaration not found\n"
                                  "1|[~~| unterminated comment\n"
                                  "3|<1,2,3>|,\n0|\"a/b\"|/\n1|~\xe9|\xe9\n1|_|_\n"
                                  "1|1" +
                                  LONGEST + "| token too long\n0|\"a" + LONGEST + "| token too long")) {
        SCOPED_TRACE(row[1]);
        const Outcome outcome = inChild([&] { readers[row[0][0] - '0'](streamOf(row[1])); });
        const std::string line =
            "\n Parser Error - line: " + std::to_string(1 + std::count(row[1].begin(), row[1].end(), '\n'));
        EXPECT_EQ(outcome.status, 255) << outcome.err;
        EXPECT_EQ(outcome.out, row[2].size() == 1
                                   ? stop + row[2] + "'\n Please review the script" + line + "\n"
                                   : line + " - " + row[2] + "\n");
    }
}

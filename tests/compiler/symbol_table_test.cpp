#include "compiler/symbol_table.h"

#include "platform/strings.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

namespace velkor {
namespace {

TSymbol Record(const std::string& name, std::int32_t kind) {
    TSymbol s;
    s.Name = UpperCase(name);
    s.Text = name;
    s.Kind = kind;
    return s;
}

TEST(SymbolTable, FindsTheFirstRecordOfANameInAnyCase) {
    TSymbolTable table;
    table.Add(Record("Alpha", skGlobalVar));
    table.Add(Record("beta", skGlobalConst));
    table.Add(Record("ALPHA", skObject)); // redeclared: added, but the first stays the one found
    EXPECT_EQ(table.Find("alpha"), 0);
    EXPECT_EQ(table.Find("Beta"), 1);
    EXPECT_EQ(table.Find("gamma"), -1);
    EXPECT_EQ(table.Find(""), -1);
}

TEST(SymbolTable, NamesAreCutToWhatARecordKeeps) {
    TSymbolTable table;
    const std::string longName(80, 'x');
    table.Add(Record(longName, skGlobalVar));
    EXPECT_EQ(table.Find(longName), 0);
    EXPECT_EQ(table.Find(std::string(64, 'X') + "something else"), 0);
    EXPECT_EQ(table.Find(std::string(63, 'x')), -1);
}

// Adds, removals of locals and of single records in random order, each followed by a look-up of every name
// compared with a plain list searched from the front.
TEST(SymbolTable, LookUpsMatchASearchOfTheRecordsInOrder) {
    std::mt19937 random(5);
    const std::vector<std::int32_t> kinds = {skGlobalVar,  skLocalVar, skPassVar,   skGlobalConst,
                                             skLocalConst, skStackVar, skStaticVar, skObject};
    TSymbolTable table;
    std::vector<TSymbol> model;
    auto name = [&] {
        std::string n = "n" + std::to_string(random() % 300);
        if (random() % 2) n = UpperCase(n);
        return n;
    };
    for (int step = 0; step < 20000; ++step) {
        const unsigned action = random() % 100;
        if (action < 80) {
            TSymbol s = Record(name(), kinds[random() % kinds.size()]);
            table.Add(s);
            model.push_back(s);
        } else if (action < 95) {
            table.RemoveLocals();
            std::erase_if(model, [](const TSymbol& s) {
                return s.Kind == skLocalVar || s.Kind == skPassVar || s.Kind == skLocalConst ||
                       s.Kind == skStackVar || s.Kind == skStaticVar;
            });
        } else if (!model.empty()) {
            const int at = static_cast<int>(random() % model.size());
            table.Remove(at);
            model.erase(model.begin() + at);
        }
        ASSERT_EQ(table.Count(), static_cast<int>(model.size()));
        for (int k = 0; k < 300; k += 7) {
            const std::string n = "N" + std::to_string(k);
            int expected = -1;
            for (size_t i = 0; i < model.size(); ++i)
                if (model[i].Name == n) {
                    expected = static_cast<int>(i);
                    break;
                }
            ASSERT_EQ(table.Find(LowerCase(n)), expected) << "step " << step << ", " << n;
        }
    }
}

} // namespace
} // namespace velkor

// Search and replace with each option bit of the find dialog, read from tests/cases/editor/search.txt.
#include "editor_test_app.h"

#include <array>
#include <map>

namespace velkor::test {
namespace {

class Search : public EditorTest {
protected:
    // The text with every selection found by searching again and again in [ ], line breaks as \n.
    QString FindAll(const QString& what, unsigned options) {
        QStringList lines = edit->text().split(QStringLiteral("\r\n"));
        std::vector<std::array<int, 3>> found;
        while (edit->Search(what, {}, options) && found.size() < 50) {
            int l1 = 0, i1 = 0, l2 = 0, i2 = 0;
            edit->getSelection(&l1, &i1, &l2, &i2);
            found.push_back({l1, i1, i2});
        }
        for (auto it = found.rbegin(); it != found.rend(); ++it)
            lines[(*it)[0]].insert((*it)[2], u']').insert((*it)[1], u'[');
        return lines.join(QStringLiteral("\\n"));
    }
};

unsigned Options(const QString& names) {
    // clang-format off
    static const std::map<QString, unsigned> bits = {
        {"Backwards", ssoBackwards}, {"EntireScope", ssoEntireScope}, {"MatchCase", ssoMatchCase},
        {"IgnoreNonSpacing", ssoIgnoreNonSpacing}, {"Prompt", ssoPrompt}, {"RegExpr", ssoRegExpr},
        {"Replace", ssoReplace}, {"ReplaceAll", ssoReplaceAll}, {"SelectedOnly", ssoSelectedOnly},
        {"SpaceCompress", ssoSpaceCompress}, {"WholeWord", ssoWholeWord}, {"Repeat", 0}, {"-", 0}};
    // clang-format on
    unsigned options = 0;
    for (const QString& name : names.split(u'+')) {
        EXPECT_TRUE(bits.count(name)) << name.toStdString();
        options |= bits.count(name) ? bits.at(name) : 0;
    }
    return options;
}

TEST_F(Search, CasesFromTheTable) {
    for (const QStringList& row : Rows("search.txt")) {
        SCOPED_TRACE(row.join(u'\t').toStdString());
        ASSERT_EQ(row.size(), 6);
        const unsigned options = Options(row[0]);
        const Marked before = Parse(row[4]);
        Load(before);
        if (row[0].startsWith(QStringLiteral("Repeat"))) {
            EXPECT_EQ(FindAll(row[1], options).toStdString(), row[5].toStdString());
            continue;
        }
        QStringList prompts = row[3] == u'-' ? QStringList() : row[3].split(u' ');
        edit->SetReplacePrompt([&](const QString& found, int line, int column) {
            const QString asked = QStringLiteral("%1@%2:%3=").arg(found).arg(line).arg(column);
            if (prompts.isEmpty() || !prompts.front().startsWith(asked)) {
                ADD_FAILURE() << "unexpected prompt " << asked.toStdString();
                return TReplaceAnswer::Cancel;
            }
            const QString answer = prompts.takeFirst().mid(asked.size());
            return answer == u"yes"   ? TReplaceAnswer::Yes
                   : answer == u"no"  ? TReplaceAnswer::No
                   : answer == u"all" ? TReplaceAnswer::All
                                      : TReplaceAnswer::Cancel;
        });
        const bool none = row[5] == u"none" || row[5] == u"error";
        EXPECT_EQ(edit->Search(row[1], row[2], options), !none);
        EXPECT_TRUE(prompts.isEmpty()) << "not asked: " << prompts.join(u' ').toStdString();
        EXPECT_EQ(edit->LastSearchError().isEmpty(), row[5] != u"error");
        ExpectText(none ? Marked{before.text} : Parse(row[5]));
        edit->undo();
        EXPECT_EQ(edit->text().toStdString(), before.text.toStdString()) << "one undo step";
    }
}

TEST_F(Search, ReplaceAllIsLinear) {
    // 200,000 replacements in a 1.4 MB text; a quadratic pass would take minutes.
    Load(QStringLiteral("a := a + 1; a := a - 1;\r\n").repeated(50000));
    ASSERT_TRUE(edit->Search(QStringLiteral("a"), QStringLiteral("bb"),
                             ssoReplace | ssoReplaceAll | ssoWholeWord | ssoMatchCase));
    EXPECT_EQ(Line(49999), QStringLiteral("bb := bb + 1; bb := bb - 1;"));
    edit->undo();
    EXPECT_EQ(Line(0), QStringLiteral("a := a + 1; a := a - 1;"));
}

} // namespace
} // namespace velkor::test

#include "MTMathList.h"
#include "MTAccent.h"
#include "MTException.h"
#include "MTFraction.h"
#include "MTInner.h"
#include "MTMathAtom.h"
#include "MTMathListBuilder.h"
#include "MTMathListIndex.h"
#include "MTMathTable.h"
#include "MTRadical.h"
#include "MathListDump.h"

#include <gtest/gtest.h>

#include <functional>

namespace {

std::shared_ptr<MTMathAtom> atom(MTMathAtomType type, const QString& nucleus = {}) {
    return std::make_shared<MTMathAtom>(type, nucleus);
}

std::shared_ptr<MTMathList> listOf(const QString& variables) {
    auto list = std::make_shared<MTMathList>();
    for (const QChar variable : variables)
        list->add(atom(MTMathAtomType::variable, variable));
    return list;
}

/// The reason that `misuse` raises, or empty.
QString reasonOf(const std::function<void()>& misuse) {
    try {
        misuse();
    } catch (const MTException& exception) {
        EXPECT_EQ(exception.name(), u"Error");
        return exception.reason();
    }
    return {};
}

QString finalizedDump(QStringView source) {
    return dump(MTMathListBuilder::build(source)->finalized());
}

} // namespace

TEST(MTMathList, finalizingResolvesOperatorsFusesNumbersAndCountsPlaces) {
    const struct {
        QStringView source;
        QStringView finalized;
    } cases[] = {
        {u"", u""},
        {u"12.5", u"num:12.5<1|2|.|5|>{0+4}"},
        {u"1^2 3", u"num:1^(num:2{0+1}){0+1} num:3{1+1}"},
        {u"12^3 45x", u"num:12^(num:3{0+1})<1|2|>{0+2} num:45<4|5|>{2+2} var:x{4+1}"},
        {u"-1", u"un:\u2212{0+1} num:1{1+1}"},
        {u"a-", u"var:a{0+1} un:\u2212{1+1}"},
        {u"a+=b", u"var:a{0+1} un:+{1+1} rel:={2+1} var:b{3+1}"},
        {u"(-1)", u"open:({0+1} un:\u2212{1+1} num:1{2+1} close:){3+1}"},
        {u"a++b", u"var:a{0+1} bin:+{1+1} un:+{2+1} var:b{3+1}"},
        {u"a+++b", u"var:a{0+1} bin:+{1+1} un:+{2+1} bin:+{3+1} var:b{4+1}"},
        {u"a+)", u"var:a{0+1} un:+{1+1} close:){2+1}"},
        {u"a+,+b", u"var:a{0+1} un:+{1+1} punct:,{2+1} un:+{3+1} var:b{4+1}"},
        {u"\\sin-x", u"op:sin{0+1} un:\u2212{1+1} var:x{2+1}"},
        {u"a+\\,=b", u"var:a{0+1} bin:+{1+1} space:3{2+1} rel:={3+1} var:b{4+1}"},
    };
    for (const auto& [source, finalized] : cases)
        EXPECT_EQ(finalizedDump(source), finalized) << source.toUtf8().constData();
}

TEST(MTMathList, finalizingReachesEveryPartOfEveryKind) {
    const QStringView shapes[] = {
        u"\\frac{%}{%}",
        u"\\sqrt[%]{%}",
        u"\\left(%\\right)",
        u"\\overline{%}",
        u"\\underline{%}",
        u"\\hat{%}",
        u"\\color{red}{%}",
        u"\\textcolor{red}{%}",
        u"\\colorbox{#0f0}{%}",
        u"x^{%}_{%}",
        u"\\begin{gather}%\\\\ %\\end{gather}",
    };
    for (const QStringView shape : shapes) {
        const QString source = shape.toString();
        const auto parsed = MTMathListBuilder::build(QString(source).replace(u'%', QStringLiteral("-12")));
        ASSERT_TRUE(parsed) << qPrintable(source);
        const QString text = dump(parsed->finalized());
        const qsizetype parts = source.count(u'%');
        EXPECT_EQ(text.count(QStringLiteral("un:\u2212{0+1} num:12<1|2|>{1+2}")), parts) << qPrintable(text);
        EXPECT_FALSE(dump(parsed).contains(u'<')) << "the source list stays as it was";
        // Layout finalizes the parts of a finalized list once more, which must not change them.
        EXPECT_EQ(dump(parsed->finalized()->finalized()), text);
    }
}

TEST(MTMathList, placesThatAreSetAlreadyStay) {
    const auto list = listOf(QStringLiteral("abc"));
    list->atoms()[1]->indexRange = {5, 2};
    EXPECT_EQ(dump(list->finalized()), u"var:a{0+1} var:b{5+2} var:c{7+1}");
}

TEST(MTMathList, editingKeepsTheRules) {
    const auto list = listOf(QStringLiteral("ac"));
    list->insert(atom(MTMathAtomType::variable, QStringLiteral("b")), 1);
    list->insert(atom(MTMathAtomType::variable, QStringLiteral("d")), 3);
    list->insert(atom(MTMathAtomType::variable, QStringLiteral("?")), 9);
    list->insert(nullptr, 0);
    list->add(nullptr);
    EXPECT_EQ(dump(list), u"var:a var:b var:c var:d");

    const auto other = listOf(QStringLiteral("xy"));
    list->append(other);
    list->append(nullptr);
    EXPECT_EQ(list->atoms().back(), other->atoms().back()) << "the same objects";
    list->removeAtom(0);
    list->removeAtoms(1, 2);
    EXPECT_EQ(dump(list), u"var:b var:x var:y");
    list->removeLastAtom();
    EXPECT_EQ(dump(list), u"var:b var:x");
    MTMathList().removeLastAtom();

    EXPECT_EQ(reasonOf([&] { list->removeAtom(2); }), u"Index 2 out of bounds");
    EXPECT_EQ(reasonOf([&] { list->removeAtoms(0, 7); }), u"Index 7 out of bounds");
    EXPECT_EQ(reasonOf([&] { list->removeAtoms(-1, 0); }), u"Index -1 out of bounds");
    const QStringView refusal = u"Cannot add atom of type 101 into mathlist";
    EXPECT_EQ(reasonOf([&] { list->add(atom(MTMathAtomType::boundary)); }), refusal);
    EXPECT_EQ(reasonOf([&] { list->insert(atom(MTMathAtomType::boundary), 0); }), refusal);
    EXPECT_EQ(dump(list), u"var:b var:x");
}

TEST(MTMathAtom, scriptsAndBoundariesAreGuarded) {
    int refused = 0;
    for (const auto type : {MTMathAtomType::ordinary, MTMathAtomType::accent, MTMathAtomType::boundary,
                            MTMathAtomType::space, MTMathAtomType::textcolor, MTMathAtomType::table}) {
        const auto target = atom(type);
        const QString sub = reasonOf([&] { target->setSubScript(listOf(QStringLiteral("i"))); });
        const QString super = reasonOf([&] { target->setSuperScript(listOf(QStringLiteral("n"))); });
        EXPECT_EQ(sub.isEmpty(), target->scriptsAllowed());
        EXPECT_EQ(target->subScript() != nullptr, target->scriptsAllowed());
        EXPECT_EQ(target->superScript() != nullptr, target->scriptsAllowed());
        if (!sub.isEmpty()) {
            ++refused;
            EXPECT_EQ(sub, QStringLiteral("Subscripts not allowed for atom of type ") + description(type));
            EXPECT_EQ(super, QStringLiteral("Superscripts not allowed for atom of type ") + description(type));
        }
        target->setSubScript(nullptr);
        EXPECT_FALSE(target->subScript());
    }
    EXPECT_EQ(refused, 4);
    EXPECT_EQ(description(MTMathAtomType::textcolor), u"TextColor");
    EXPECT_EQ(description(MTMathAtomType::largeOperator), u"Large Operator");

    MTInner inner;
    inner.setLeftBoundary(atom(MTMathAtomType::boundary, QStringLiteral("(")));
    EXPECT_EQ(reasonOf([&] { inner.setLeftBoundary(atom(MTMathAtomType::open)); }),
              u"Left boundary must be of type .boundary");
    EXPECT_EQ(reasonOf([&] { inner.setRightBoundary(atom(MTMathAtomType::close)); }),
              u"Right boundary must be of type .boundary");
    EXPECT_FALSE(inner.leftBoundary());
}

TEST(MTMathAtom, copiesShareNothingAndKeepTheirClass) {
    const QStringView source = u"\\frac{a_1}{b}\\sqrt[3]{x}\\left(y\\right)\\hat{z}\\sum\\nolimits_i^n\\overline{q}"
                               u"\\underline{q}\\quad\\textstyle\\color{red}{c}\\textcolor{red}{c}\\colorbox{red}{c}"
                               u"\\mathbf{v}\\begin{pmatrix}1&2\\\\3&4\\end{pmatrix}";
    const auto original = MTMathListBuilder::build(source);
    ASSERT_TRUE(original);
    const QString before = dump(original);
    const auto copy = MTMathList::copy(original);
    EXPECT_EQ(dump(copy), before);
    EXPECT_EQ(dump(MTMathList::copy(copy)), before) << "a copy can be copied";
    EXPECT_FALSE(MTMathList::copy(nullptr));

    // What is changed anywhere in the copy is not seen in the original.
    for (const auto& part : copy->atoms()) {
        part->nucleus += u'!';
        if (const auto fraction = std::dynamic_pointer_cast<MTFraction>(part)) {
            fraction->numerator->atoms().front()->subScript()->add(atom(MTMathAtomType::number, QStringLiteral("9")));
            fraction->denominator->removeLastAtom();
        } else if (const auto radical = std::dynamic_pointer_cast<MTRadical>(part)) {
            radical->degree->removeLastAtom();
            radical->radicand->removeLastAtom();
        } else if (const auto inner = std::dynamic_pointer_cast<MTInner>(part)) {
            inner->leftBoundary()->nucleus = QStringLiteral("[");
            if (const auto table = std::dynamic_pointer_cast<MTMathTable>(inner->innerList->atoms().front()))
                table->cells[0][0]->removeLastAtom();
        } else if (const auto decorated = std::dynamic_pointer_cast<MTInnerListAtom>(part)) {
            decorated->innerList->removeLastAtom();
        }
    }
    EXPECT_EQ(dump(original), before);
    EXPECT_EQ(atom(MTMathAtomType::radical, QStringLiteral("x"))->nucleus, QString());
}

TEST(MTMathAtom, fusingTakesOverTextPlacesAndScripts) {
    const auto first = atom(MTMathAtomType::ordinary, QStringLiteral("a"));
    const auto second = atom(MTMathAtomType::ordinary, QStringLiteral("b"));
    second->indexRange = {1, 1};
    second->setSuperScript(listOf(QStringLiteral("n")));
    first->indexRange = {0, 1};
    first->fuse(second);
    EXPECT_EQ(dump(*first), u"ord:ab^(var:n)<a|b|>{0+2}");
    EXPECT_EQ(first->fusedAtoms[1], second);
    const auto copy = first->copy();
    EXPECT_EQ(copy->fusedAtoms[1]->superScript(), copy->superScript());
    EXPECT_NE(copy->superScript(), first->superScript());

    for (const auto& [target, other] : {std::pair(first, atom(MTMathAtomType::ordinary)),
                                        std::pair(atom(MTMathAtomType::number), atom(MTMathAtomType::ordinary))}) {
        const QString before = dump(*target);
        testing::internal::CaptureStdout();
        target->fuse(other);
        EXPECT_EQ(testing::internal::GetCapturedStdout(), "Can't fuse these 2 atoms\n");
        EXPECT_EQ(dump(*target), before);
    }
}

TEST(MTMathAtom, descriptionsTellTheStructure) {
    const struct {
        QStringView source;
        QStringView text;
    } cases[] = {
        {u"x_1^2", u"x^{2}_{1}"},
        {u"\\frac{a}{b}^2", u"\\frac{a}{b}^{2}"},
        {u"{n \\choose k}", u"\\atop[(][)]{n}{k}"},
        {u"\\sqrt[3]{x}", u"\\sqrt[3]{x}"},
        {u"\\left(a\\right]", u"\\inner[(]{a}[]]"},
        {u"\\color{#00f}{x}\\textcolor{red}{y}\\colorbox{red}{z}",
         u"\\color{#00f}{x}\\textcolor{red}{y}\\colorbox{red}{z}"},
    };
    for (const auto& [source, text] : cases)
        EXPECT_EQ(MTMathListBuilder::build(source)->description(), text);
    EXPECT_EQ(MTFraction(false).description(), u"\\atop{placeholder}{placeholder}");
}

TEST(MTMathTable, growsToWhatIsSet) {
    MTMathTable table;
    EXPECT_EQ(table.numColumns(), 0);
    EXPECT_EQ(table.alignmentForColumn(3), MTColumnAlignment::center);
    table.setCell(listOf(QStringLiteral("x")), 1, 2);
    table.setCell(listOf(QStringLiteral("y")), 1, 0);
    table.setAlignment(MTColumnAlignment::right, 1);
    EXPECT_EQ(dump(table), u"table:[cr 0 0](\\var:y&&var:x)");
    EXPECT_EQ(table.numRows(), 2);
    EXPECT_EQ(table.numColumns(), 3);
    EXPECT_EQ(table.alignmentForColumn(0), MTColumnAlignment::center);
    EXPECT_EQ(table.alignmentForColumn(1), MTColumnAlignment::right);
    EXPECT_EQ(reasonOf([&] { table.setCell(nullptr, -1, 0); }), u"Index -1 out of bounds");
}

TEST(MTMathListIndex, describesAndComparesPlaces) {
    const auto inner = MTMathListIndex::level0Index(0);
    const MTMathListIndex index(2, MTMathListSubIndexType::numerator, inner);
    EXPECT_EQ(inner.description(), u"[0]");
    EXPECT_EQ(index.description(), u"[2, 4:[0]]");
    EXPECT_EQ(index, MTMathListIndex(2, MTMathListSubIndexType::numerator, MTMathListIndex(0)));
    EXPECT_EQ(index.hash(), MTMathListIndex(2, MTMathListSubIndexType::numerator, MTMathListIndex(1)).hash());
    EXPECT_FALSE(index == MTMathListIndex(2, MTMathListSubIndexType::numerator, MTMathListIndex(1)));
    EXPECT_FALSE(index == MTMathListIndex(2, MTMathListSubIndexType::denominator, inner));
    EXPECT_FALSE(MTMathListIndex(2) == index);
    EXPECT_FALSE(index == MTMathListIndex(2));
}

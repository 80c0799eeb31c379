#include "OnlyPicture.h"

#include "Logging.h"
#include "PdfValues.h"
#include "SourceFile.h"

#include <map>
#include <set>
#include <string>
#include <vector>

namespace {

constexpr int invisible = 3; // the mode of text

/// Follows a content stream for as long as it may still be that of a scanned page.
class ScanParser : public QPDFObjectHandle::ParserCallbacks {
public:
    ScanParser(const QPDFObjectHandle& resources, const QRectF& shown) : m_resources(resources), m_shown(shown) {}

    [[nodiscard]] std::optional<OnlyPicture::Picture> picture() const { return m_isScan ? m_picture : std::nullopt; }

    void handleObject(QPDFObjectHandle object, std::size_t, std::size_t) override {
        constexpr std::size_t mostOperands = 64;
        if (!object.isOperator()) {
            m_operands.push_back(object);
            if (m_operands.size() > mostOperands)
                giveUp();
            return;
        }
        // Invisible text has its operators, but no scan has thousands of anything else.
        if (!run(object.getOperatorValue()))
            giveUp();
        m_operands.clear();
    }
    void handleEOF() override {}

private:
    struct State {
        QTransform toPage;
        QRectF clip; // page coordinates; null for none
        QByteArray paint;
        bool isPaintKnown = true;
        int textMode = 0;
    };

    void giveUp() {
        m_isScan = false;
        terminateParsing();
    }

    [[nodiscard]] double number(std::size_t index) const {
        return index < m_operands.size() ? PdfValues::toNumber(m_operands[index]) : 0;
    }

    /// False for an operator that a scanned page hasn't.
    bool run(const std::string& name) {
        static const std::set<std::string> harmless{"w",  "J",   "j",  "M",  "d",  "i",  "ri", "G",   "RG", "K",  "CS",
                                                    "SC", "SCN", "BT", "ET", "Tc", "Tw", "Tz", "TL",  "Tf", "Ts", "Td",
                                                    "TD", "Tm",  "T*", "MP", "DP", "BX", "EX", "BMC", "EMC"};
        static const std::set<std::string> showsText{"Tj", "TJ", "'", "\""};
        if (harmless.count(name) > 0)
            return true;
        if (showsText.count(name) > 0)
            return m_now.textMode == invisible;
        static const std::map<std::string, bool (ScanParser::*)()> handlers{
            {"q", &ScanParser::save},       {"Q", &ScanParser::restore},   {"cm", &ScanParser::transform},
            {"re", &ScanParser::rectangle}, {"W", &ScanParser::clip},      {"W*", &ScanParser::clip},
            {"n", &ScanParser::endPath},    {"Tr", &ScanParser::textMode}, {"gs", &ScanParser::graphicsState},
            {"BDC", &ScanParser::mark},     {"Do", &ScanParser::draw}};
        if (const auto handler = handlers.find(name); handler != handlers.end())
            return (this->*handler->second)();
        if (name == "g" || name == "rg" || name == "k") {
            m_now.paint.clear();
            for (std::size_t i = 0; i < m_operands.size(); ++i)
                m_now.paint += PdfValues::real(number(i)) + ' ';
            m_now.paint += QByteArray::fromStdString(name) + ' ';
            m_now.isPaintKnown = true;
            return true;
        }
        if (name == "cs" || name == "sc" || name == "scn") {
            m_now.isPaintKnown = false;
            return true;
        }
        return false;
    }

    bool save() {
        constexpr std::size_t deepest = 64;
        m_saved.push_back(m_now);
        return m_saved.size() < deepest;
    }

    bool restore() {
        if (m_saved.empty())
            return false;
        m_now = m_saved.back();
        m_saved.pop_back();
        return true;
    }

    bool transform() {
        m_now.toPage = QTransform(number(0), number(1), number(2), number(3), number(4), number(5)) * m_now.toPage;
        return m_operands.size() == 6;
    }

    /// One rectangle for a clip, not turned to a slant.
    bool rectangle() {
        if (!m_path.isNull() || m_operands.size() != 4 || m_now.toPage.type() > QTransform::TxRotate ||
            (m_now.toPage.m11() != 0 && m_now.toPage.m12() != 0))
            return false;
        m_path = m_now.toPage.mapRect(QRectF(number(0), number(1), number(2), number(3)).normalized());
        return !m_path.isEmpty();
    }

    bool clip() {
        m_clips = true;
        return !m_path.isNull();
    }

    bool endPath() {
        if (m_clips)
            m_now.clip = m_now.clip.isNull() ? m_path : m_now.clip & m_path;
        const bool isSound = !m_clips || !m_now.clip.isEmpty();
        m_path = {};
        m_clips = false;
        return isSound;
    }

    bool textMode() {
        m_now.textMode = int(number(0));
        return true;
    }

    [[nodiscard]] QPDFObjectHandle resource(const char* category) {
        return m_operands.empty() || !m_operands.back().isName()
                   ? QPDFObjectHandle::newNull()
                   : PdfValues::entry(PdfValues::entry(m_resources, category), m_operands.back().getName());
    }

    /// What makes nothing translucent and mixes no colours.
    bool graphicsState() {
        QPDFObjectHandle state = resource("/ExtGState");
        if (!state.isDictionary())
            return false;
        for (auto& [key, value] : state.getDictAsMap()) {
            const bool isOpaque = (key == "/CA" || key == "/ca") && PdfValues::toNumber(value) == 1;
            const bool isPlain = (key == "/BM" && value.isNameAndEquals("/Normal")) ||
                                 (key == "/SMask" && value.isNameAndEquals("/None"));
            static const std::set<std::string> ignored{"/Type", "/OP", "/op", "/OPM", "/SA", "/AIS",
                                                       "/SM",   "/RI", "/LW", "/FL",  "/TK"};
            if (!isOpaque && !isPlain && ignored.count(key) == 0)
                return false;
        }
        return true;
    }

    /// Layers may be switched off.
    bool mark() { return m_operands.empty() || !m_operands.front().isNameAndEquals("/OC"); }

    bool draw() {
        QPDFObjectHandle image = resource("/XObject");
        if (m_picture || !image.isStream() || !image.getDict().getKey("/Subtype").isNameAndEquals("/Image") ||
            image.getDict().hasKey("/OC") || image.getDict().hasKey("/OPI"))
            return false;
        constexpr double unseen = 0.5; // of a page's unit that a clip may cut off
        const QRectF drawn = m_now.toPage.mapRect(QRectF(0, 0, 1, 1)) & m_shown;
        if (drawn.isEmpty() ||
            (!m_now.clip.isNull() && !m_now.clip.adjusted(-unseen, -unseen, unseen, unseen).contains(drawn)))
            return false;
        const bool isStencil =
            image.getDict().getKey("/ImageMask").isBool() && image.getDict().getKey("/ImageMask").getBoolValue();
        m_picture = OnlyPicture::Picture{image, m_now.toPage, isStencil ? m_now.paint : QByteArray()};
        return !isStencil || m_now.isPaintKnown;
    }

    QPDFObjectHandle m_resources;
    QRectF m_shown;
    std::vector<QPDFObjectHandle> m_operands;
    State m_now;
    std::vector<State> m_saved;
    QRectF m_path;
    bool m_clips = false;
    bool m_isScan = true;
    std::optional<OnlyPicture::Picture> m_picture;
};

} // namespace

std::optional<OnlyPicture::Picture> OnlyPicture::on(QPDFObjectHandle page, const QRectF& shown) {
    if (!page.isDictionary())
        return std::nullopt;
    ScanParser parser(SourceFile::inheritable(page, "/Resources"), shown);
    try {
        page.parsePageContents(&parser);
    } catch (const std::exception& error) {
        qCWarning(Logging::pdf) << "reading the content of a page failed:" << Logging::causes(error);
        return std::nullopt;
    }
    return parser.picture();
}

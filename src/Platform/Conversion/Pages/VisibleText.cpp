#include "VisibleText.h"

#include <QByteArrayView>

#include <array>
#include <vector>

namespace {

constexpr double margin = 54;      // points
constexpr double pageHeight = 792; // points

/// How a place in what is drawn gets to the page, in the vertical direction.
struct Vertical {
    double fromX = 0;
    double fromY = 1;
    double shift = 0;

    [[nodiscard]] double of(double x, double y) const { return x * fromX + y * fromY + shift; }
};

class Scan {
public:
    explicit Scan(const QByteArray& instructions) : bytes_(instructions) {}

    std::optional<QByteArray> run() {
        for (qsizetype start = 0; start < bytes_.size();) {
            qsizetype end = start;
            while (end < bytes_.size() && bytes_[end] > ' ')
                ++end;
            if (end > start)
                handle(QByteArrayView(bytes_).sliced(start, end - start), start);
            start = end + 1;
        }
        if (copied_ == 0)
            return std::nullopt;
        return kept_ + bytes_.mid(copied_);
    }

private:
    void handle(QByteArrayView word, qsizetype start) {
        if (word == "BT") {
            textStart_ = start;
            text_ = {};
            isPlaced_ = false;
            isVisible_ = true;
        } else if (word == "q") {
            saved_.push_back(page_);
        } else if (word == "Q") {
            if (!saved_.empty()) {
                page_ = saved_.back();
                saved_.pop_back();
            }
        } else if (word == "cm") {
            page_ = {operand(6) * page_.fromX + operand(5) * page_.fromY,
                     operand(4) * page_.fromX + operand(3) * page_.fromY, page_.of(operand(2), operand(1))};
        } else if (word == "Tm") {
            text_ = {operand(5), operand(3), operand(1)};
        } else if (word == "Td" && !isPlaced_) {
            const double baseline = page_.of(0, text_.of(operand(2), operand(1)));
            isPlaced_ = true;
            isVisible_ = page_.fromX != 0 || (baseline > margin && baseline < pageHeight - margin);
        } else if (word == "ET" && !isVisible_) {
            kept_ += bytes_.mid(copied_, textStart_ - copied_);
            copied_ = start + word.size();
        }
        operands_[count_++ % operands_.size()] = word;
    }

    /// Of the operator that is being read; number 1 is the last one.
    [[nodiscard]] double operand(std::size_t fromEnd) const {
        return fromEnd > count_ ? 0 : operands_[(count_ - fromEnd) % operands_.size()].toDouble();
    }

    const QByteArray& bytes_;
    QByteArray kept_;
    qsizetype copied_ = 0; ///< up to where the bytes are kept or dropped already
    std::array<QByteArrayView, 8> operands_;
    std::size_t count_ = 0;
    std::vector<Vertical> saved_;
    Vertical page_;
    Vertical text_; ///< from the coordinates of the text that is being read to those of `page_`
    qsizetype textStart_ = 0;
    bool isPlaced_ = false; ///< whether it is known where that text is
    bool isVisible_ = true;
};

} // namespace

std::optional<QByteArray> VisibleText::only(const QByteArray& instructions) {
    return Scan(instructions).run();
}

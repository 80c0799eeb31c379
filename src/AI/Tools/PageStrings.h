#pragma once

#include "PDFPageContent.h"

#include <QString>

#include <map>
#include <mutex>
#include <stop_token>

/// The texts of pages as plain strings, kept so that a second look at a document doesn't read it again. Sources never
/// change, so what is kept stays right. Thread-safe.
///
/// Once the limit is reached nothing more is kept and nothing is dropped: whoever walks a long document from its start
/// would otherwise find just those pages dropped that he comes to next.
class PageStrings {
public:
    static constexpr qsizetype defaultLimit = 16 << 20;

    /// `limit` in UTF-16 units, two bytes each.
    explicit PageStrings(qsizetype limit = defaultLimit) : m_limit(limit) {}

    /// `PDFPage::string` of a page with that content; it may lack anything once `stop` is requested.
    [[nodiscard]] QString string(const PDFPageContent& page, const std::stop_token& stop = {});

    void clear();

private:
    struct Order {
        bool operator()(const PDFPageContent& a, const PDFPageContent& b) const;
    };

    const qsizetype m_limit;
    std::mutex m_mutex; // guards what follows
    std::map<PDFPageContent, QString, Order> m_strings;
    qsizetype m_length = 0;
};

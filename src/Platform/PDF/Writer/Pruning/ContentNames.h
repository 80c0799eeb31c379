#pragma once

#include <qpdf/QPDFObjectHandle.hh>

#include <functional>
#include <optional>
#include <set>
#include <string>
#include <vector>

/// Which resources content uses.
namespace ContentNames {

/// Every name that stands in the content of the streams, with its slash; a few more than those that the operators mean.
/// None when a stream can't be decoded.
[[nodiscard]] std::optional<std::set<std::string>> in(const std::vector<QPDFObjectHandle>& streams);

/// Content streams with the resources that their names mean.
struct User {
    QPDFObjGen owner; ///< the page, stream or font that has the resources
    QPDFObjectHandle resources;
    std::vector<QPDFObjectHandle> streams;
};

/// Walks through pages and whatever they draw that has content of its own: form XObjects, tiling patterns, soft masks
/// of graphics states, glyphs of Type 3 fonts, appearances of annotations. Each is visited once for each dictionary of
/// resources that it uses.
class Walker {
public:
    explicit Walker(std::function<void(const User&)> visit) : m_visit(std::move(visit)) {}
    void walkPage(QPDFObjectHandle page);

private:
    void add(QPDFObjGen owner, QPDFObjectHandle resources, std::vector<QPDFObjectHandle> streams);
    void addStream(QPDFObjectHandle stream, QPDFObjGen outerOwner, QPDFObjectHandle outerResources);
    void addFrom(const User& user);
    void addAppearances(QPDFObjectHandle annotation);
    void run();

    std::function<void(const User&)> m_visit;
    std::vector<User> m_pending;
    std::set<std::pair<QPDFObjGen, QPDFObjGen>> m_seenStreams; // stream, and resources or their owner
    std::set<QPDFObjGen> m_seenResources;
};

} // namespace ContentNames

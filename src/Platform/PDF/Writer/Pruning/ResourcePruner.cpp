#include "Pruner.h"

#include "ContentNames.h"
#include "PdfValues.h"
#include "RemovedPages.h"

#include <map>

namespace {

constexpr const char* categories[] = {"/XObject", "/Font",      "/Pattern",   "/Properties",
                                      "/Shading", "/ExtGState", "/ColorSpace"};

/// Those whose entries are content of their own. What is shared of the others, fonts above all, is no page's content.
bool holdsContent(const std::string& category) {
    return category == "/XObject" || category == "/Pattern" || category == "/Properties" || category == "/Shading";
}

/// Colour spaces that stand for the plain ones of a page, without being named by its content.
bool appliesUnnamed(const std::string& category, const std::string& name) {
    return category == "/ColorSpace" && (name == "/DefaultGray" || name == "/DefaultRGB" || name == "/DefaultCMYK");
}

/// A dictionary of one category of resources: an object of its own, with an empty second part, or the part of that name
/// of a dictionary of resources or of that one's owner.
using ContainerId = std::pair<QPDFObjGen, std::string>;

using Names = std::optional<std::set<std::string>>; // none for content that can't be read

struct Container {
    ContainerId id;
    std::string category;
    QPDFObjectHandle entries;

    /// False for one that stands in its only user and in nothing else.
    bool mayBeShared = true;
};

std::vector<Container> containersOf(QPDFObjectHandle resources, QPDFObjGen owner) {
    std::vector<Container> found;
    for (const char* category : categories) {
        QPDFObjectHandle entries = PdfValues::entry(resources, category);
        if (!entries.isDictionary())
            continue;
        if (entries.isIndirect())
            found.push_back({{entries.getObjGen(), {}}, category, entries});
        else if (resources.isIndirect())
            found.push_back({{resources.getObjGen(), category}, category, entries});
        else
            found.push_back({{owner, category}, category, entries, false});
    }
    return found;
}

class ResourcePruner {
public:
    ResourcePruner(const RemovedPages& gone, ObjectStore& objects) : m_gone(gone), m_objects(objects) {}

    void prune() {
        if (!findSuspects())
            return;
        // What the removed pages used of shared dictionaries, less what the remaining pages use.
        walk(m_gone.removed, [this](Container& container, const Names& names) {
            for (const std::string& entry : container.entries.getKeys())
                if ((!names || names->count(entry) > 0) && !appliesUnnamed(container.category, entry))
                    m_suspects[container.id].names.insert(entry);
        });
        walk(m_gone.remaining, [this](Container& container, const Names& names) {
            std::set<std::string>& suspects = m_suspects[container.id].names;
            if (!names)
                suspects.clear();
            else
                std::erase_if(suspects, [&names](const std::string& entry) { return names->count(entry) > 0; });
        });
        // A form's fonts serve fields that are filled later.
        QPDFObjectHandle form = PdfValues::entry(m_objects.root().getKey("/AcroForm"), "/DR");
        for (const Container& container : containersOf(form, QPDFObjGen()))
            m_suspects.erase(container.id);
        for (auto& [id, suspects] : m_suspects)
            for (const std::string& name : suspects.names)
                suspects.entries.removeKey(name);
    }

private:
    /// Entries that may have to go, and the dictionary that they stand in.
    struct Suspects {
        QPDFObjectHandle entries;
        std::set<std::string> names;
    };

    /// Reads no content yet, which most files don't need.
    bool findSuspects() {
        std::set<ContainerId> ofRemoved;
        std::set<QPDFObjGen> contentOfRemoved;
        ContentNames::Walker removedWalker([&](const ContentNames::User& user) {
            for (Container& container : containersOf(user.resources, user.owner)) {
                if (container.mayBeShared)
                    ofRemoved.insert(container.id);
                if (holdsContent(container.category))
                    for (const auto& [name, entry] : container.entries.ditems())
                        if (entry.isIndirect())
                            contentOfRemoved.insert(entry.getObjGen());
            }
        });
        for (const QPDFObjectHandle& page : m_gone.removed)
            removedWalker.walkPage(page);
        ContentNames::Walker remainingWalker([&](const ContentNames::User& user) {
            for (Container& container : containersOf(user.resources, user.owner)) {
                if (ofRemoved.count(container.id) > 0)
                    m_suspects[container.id].entries = container.entries;
                if (!holdsContent(container.category))
                    continue;
                for (const auto& [name, entry] : container.entries.ditems()) {
                    if (!entry.isIndirect() || contentOfRemoved.count(entry.getObjGen()) == 0)
                        continue;
                    m_suspects[container.id].entries = container.entries;
                    m_suspects[container.id].names.insert(name);
                }
            }
        });
        for (const QPDFObjectHandle& page : m_gone.remaining)
            remainingWalker.walkPage(page);
        return !m_suspects.empty();
    }

    /// Visits each suspect container of each user, with the names in the user's content.
    template <typename Visit>
    void walk(const std::vector<QPDFObjectHandle>& pages, Visit visit) {
        ContentNames::Walker walker([&](const ContentNames::User& user) {
            std::optional<Names> names; // decoded where it is needed
            for (Container& container : containersOf(user.resources, user.owner)) {
                if (m_suspects.count(container.id) == 0)
                    continue;
                if (!names)
                    names = ContentNames::in(user.streams);
                visit(container, *names);
            }
        });
        for (const QPDFObjectHandle& page : pages)
            walker.walkPage(page);
    }

    const RemovedPages& m_gone;
    ObjectStore& m_objects;
    std::map<ContainerId, Suspects> m_suspects;
};

} // namespace

void Pruner::pruneResources(const RemovedPages& gone, ObjectStore& objects) {
    ResourcePruner(gone, objects).prune();
}

void Pruner::dropUnusedResources(const std::vector<QPDFObjectHandle>& pages) {
    struct Usage {
        QPDFObjectHandle entries;
        std::string category = {};
        Names names = std::set<std::string>(); ///< none when some content can't be read
    };
    std::map<ContainerId, Usage> used;
    ContentNames::Walker walker([&used](const ContentNames::User& user) {
        const std::vector<Container> containers = containersOf(user.resources, user.owner);
        if (containers.empty())
            return;
        const Names names = ContentNames::in(user.streams);
        for (const Container& container : containers) {
            Usage& usage = used[container.id];
            usage.entries = container.entries;
            usage.category = container.category;
            if (!names)
                usage.names.reset();
            else if (usage.names)
                usage.names->insert(names->begin(), names->end());
        }
    });
    for (const QPDFObjectHandle& page : pages)
        walker.walkPage(page);
    for (auto& [id, usage] : used)
        if (usage.names)
            for (const std::string& entry : usage.entries.getKeys())
                if (usage.names->count(entry) == 0 && !appliesUnnamed(usage.category, entry))
                    usage.entries.removeKey(entry);
}

#include "EngineBudget.h"

#include "EngineContext.h"
#include "SourceEngine.h"

#include <algorithm>
#include <mutex>
#include <vector>

namespace {

/// What the engine may hold before files give up their caches. A file that is read holds some 5 to 30 MB.
constexpr std::size_t softLimit = std::size_t(256) << 20;

struct Engines {
    std::mutex mutex;                 // held while engines release, so that none goes meanwhile
    std::vector<SourceEngine*> byUse; // those that keep something, most recent last
};

Engines& engines() {
    static Engines& all = *new Engines; // documents may go later than anything that is made on first use
    return all;
}

} // namespace

void EngineBudget::remove(SourceEngine& engine) {
    const std::lock_guard guard(engines().mutex);
    std::erase(engines().byUse, &engine);
}

void EngineBudget::noteUse(SourceEngine& engine) {
    const std::lock_guard guard(engines().mutex);
    std::vector<SourceEngine*>& byUse = engines().byUse;
    std::erase(byUse, &engine);
    const auto firstKept = std::find_if(byUse.begin(), byUse.end(), [](SourceEngine* oldest) {
        if (engineBytes() <= softLimit)
            return true;
        oldest->releaseCaches();
        return false;
    });
    byUse.erase(byUse.begin(), firstKept);
    byUse.push_back(&engine);
}

void EngineBudget::releaseAll() {
    const std::lock_guard guard(engines().mutex);
    for (SourceEngine* engine : engines().byUse)
        engine->releaseCaches();
    engines().byUse.clear();
}

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
    std::vector<SourceEngine*> byUse; // most recent last
};

Engines& engines() {
    static Engines& all = *new Engines; // documents may go later than anything that is made on first use
    return all;
}

} // namespace

void EngineBudget::add(SourceEngine& engine) {
    const std::lock_guard guard(engines().mutex);
    engines().byUse.push_back(&engine);
}

void EngineBudget::remove(SourceEngine& engine) {
    const std::lock_guard guard(engines().mutex);
    std::erase(engines().byUse, &engine);
}

void EngineBudget::noteUse(SourceEngine& engine) {
    const std::lock_guard guard(engines().mutex);
    std::vector<SourceEngine*>& byUse = engines().byUse;
    const auto used = std::find(byUse.begin(), byUse.end(), &engine);
    std::rotate(used, used == byUse.end() ? used : std::next(used), byUse.end());
    for (SourceEngine* oldest : byUse) {
        if (oldest == &engine || engineBytes() <= softLimit)
            return;
        oldest->releaseCaches();
    }
}

void EngineBudget::releaseAll() {
    const std::lock_guard guard(engines().mutex);
    for (SourceEngine* engine : engines().byUse)
        engine->releaseCaches();
}

#pragma once

#include <QRectF>
#include <QTransform>

#include <memory>
#include <mutex>
#include <string>
#include <type_traits>

extern "C" {
#include <mupdf/fitz.h>
#include <mupdf/pdf.h>
}

/// An engine of its own, for one opened document: its store of fonts and pictures is shared with no other document. The
/// engine compares the keys of a store by looking into the documents that they came from, whichever thread has those at
/// that time, so documents that several threads use must not share one.
class EngineInstance {
public:
    EngineInstance();
    ~EngineInstance();
    EngineInstance(const EngineInstance&) = delete;
    EngineInstance& operator=(const EngineInstance&) = delete;

    /// A context over this instance for one thread at a time; the caller drops it. Any thread may ask. Null when there
    /// is no memory.
    [[nodiscard]] fz_context* newContext() const;

    /// Drops decoded fonts and pictures that nothing holds. No thread may work with a document of this instance
    /// meanwhile; recorded pages may be replayed.
    void emptyStore() const;

private:
    struct Locks;

    const std::unique_ptr<Locks> m_locks;
    fz_context* m_base = nullptr; // never worked with, only cloned
    mutable std::mutex m_cloning;
};

/// What the engine holds at the moment in all instances, in bytes, but for some tens of thousands of each thread. Any
/// thread.
[[nodiscard]] std::size_t engineBytes();

/// From now on the engine gets no memory on this thread once `cookie` is aborted; null for none. Parts of it, such as
/// glyphs that are pages of their own, don't look at their cookie, but end when there is no memory. The document that
/// they worked on may be left half read. Returns what was set before.
const fz_cookie* setMemoryStop(const fz_cookie* cookie);

/// A context for as long as one call takes.
class EngineContext {
public:
    explicit EngineContext(const EngineInstance& instance) : m_context(instance.newContext()) {}
    ~EngineContext() { fz_drop_context(m_context); }
    EngineContext(const EngineContext&) = delete;
    EngineContext& operator=(const EngineContext&) = delete;

    /// Null when there is no memory.
    [[nodiscard]] fz_context* get() const { return m_context; }

private:
    fz_context* m_context;
};

/// Runs `body(data)` where the engine may throw. False when it did, with its message in `message`. The body must not
/// hold an object with a destructor across an engine call: the engine's throw is a longjmp.
bool engineCall(fz_context* context, void (*body)(void*), void* data, std::string* message);

/// `engineCall` for a lambda. What the lambda changes outside is safe to read afterwards, since the call is opaque to
/// the compiler.
template <typename Body>
bool engineTry(fz_context* context, Body&& body, std::string* message = nullptr) {
    using Plain = std::remove_reference_t<Body>;
    return engineCall(
        context, [](void* data) { (*static_cast<Plain*>(data))(); }, const_cast<std::remove_const_t<Plain>*>(&body),
        message);
}

inline fz_matrix toEngine(const QTransform& t) {
    return fz_make_matrix(float(t.m11()), float(t.m12()), float(t.m21()), float(t.m22()), float(t.dx()), float(t.dy()));
}

inline QTransform fromEngine(const fz_matrix& m) {
    return {m.a, m.b, m.c, m.d, m.e, m.f};
}

inline QRectF fromEngine(const fz_rect& r) {
    return {QPointF(r.x0, r.y0), QPointF(r.x1, r.y1)};
}

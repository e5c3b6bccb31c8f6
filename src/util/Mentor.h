#pragma once

#include <exception>
#include <functional>
#include <typeinfo>

#include "logging/Log.h"
#include "util/Callback.h"
#include "util/ClassTracker.h"
#include "util/Exception.h"
#include "util/SharedPtr.h"

namespace util {

// What the resource manager unloads and reloads when the GL context goes and comes.
class AbstractMentor : public Pointee, public ClassTracker<AbstractMentor> {
  public:
    virtual void Load() = 0;
    virtual void Unload() = 0;
    virtual const std::type_info& GetType() const = 0;
};

// A holder that can build its T again from a stored factory: GL objects die with their context, so nobody
// holds them directly. Loaded or unloaded; the factory is fixed. A failed attempt is remembered, so that a
// broken shader is not compiled anew at each access: only Load and Unload make the accessor try again.
template <class T>
class Mentor : public AbstractMentor {
  public:
    using Factory = std::function<T*()>;

    explicit Mentor(const Factory& factory) : m_factory(factory) {}

    // Never throws. On failure the value of the default mentor is shared, if there is one.
    void Load() override {
        if (m_value) return;
        m_tried = true;
        RunFactory();
        if (m_value) {
            m_onLoad.CallAll();
            return;
        }
        if (!s_default || s_default.Get() == this) return;
        s_default->Load();
        m_value = s_default->m_value;
    }

    void Unload() override {
        m_tried = false;
        if (!m_value) return;
        m_onUnload.CallAll();
        m_value = nullptr;
    }

    const std::type_info& GetType() const override { return typeid(T); }

    bool IsLoaded() const { return static_cast<bool>(m_value); }

    // The object, loaded on demand; empty when it failed and no default stands in.
    const SharedPtr<T>& Get() {
        if (!m_value && !m_tried) Load();
        return m_value;
    }

    CallbackSet& GetOnLoad() { return m_onLoad; }      // after each successful load
    CallbackSet& GetOnUnload() { return m_onUnload; }  // before each unload

    static void SetDefault(const SharedPtr<Mentor<T>>& mentor) { s_default = mentor; }

  private:
    void RunFactory() {
        try {
            m_value = m_factory();
        } catch (const std::exception& e) {
            LogException(e, WHERE);
            Log(logging::Error, e.what());
        } catch (...) {
            LogUnknownException(WHERE);
            Log(logging::Error, String("Unknown error while loading ") + typeid(T).name());
        }
    }

    Factory m_factory;
    SharedPtr<T> m_value;
    CallbackSet m_onLoad;
    CallbackSet m_onUnload;
    bool m_tried = false;  // an attempt has been made since the last Unload

    static inline SharedPtr<Mentor<T>>& s_default = *new SharedPtr<Mentor<T>>;  // abandoned at exit
};

}  // namespace util

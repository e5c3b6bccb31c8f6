#pragma once

#include <memory>
#include <vector>

#include "util/String.h"

namespace util {

// The measuring half of the profiler: sections, entered by name, nest to a tree that is built as they
// first occur. The half that listens to keys is util::Profiler.
//
// Sections are entered only while the tree is enabled, and a name that is already open further up is not
// entered again: a recursion (script functions) would otherwise grow the tree without bound, and its time
// is counted in the outer section anyway.
class ProfileTree {
  public:
    struct Node;
    using NodePtr = std::unique_ptr<Node>;
    struct Node {
        explicit Node(const char* name, Node* parent) : m_name(name), m_parent(parent) {}

        const char* m_name;               // compared by address: names are literals
        Node* m_parent;                   // null for the root
        std::vector<NodePtr> m_children;  // in order of first occurrence
        NodePtr m_missing;                // the row "MISSING TIME", made on the first report
        double m_maxTime = 0;             // seconds, longest call since the last report
        double m_totalTime = 0;           // seconds, all calls since the last report
        int m_numCalls = 0;               // since the last report
        double m_startTime = 0;           // seconds, when it was last entered
    };

    // The tree that all sections report to.
    static ProfileTree& Get();

    void Reset();
    bool Begin(const char* name);  // whether the section was entered and needs its End
    void End();

    // Once per frame, outside all sections.
    void Update();

    bool IsEnabled() const { return m_enabled; }
    void ToggleEnabled();

    // Browsing; children without children of their own are not entered.
    void ViewParent();
    void ViewChild(size_t index);
    void ViewSlowestChild();

    // The table of the last report, or what went wrong.
    const String& GetReport() const { return m_report; }

  private:
    ProfileTree();

    void Fail(const String& message);
    void View(Node* node);
    Node* FindOrAddChild(const char* name);
    void Report(double now);

    double m_updateTime = 1;  // seconds between reports
    double m_lastReport = 0;  // seconds
    int m_numFrames = 0;      // since the last report
    bool m_enabled = false;
    NodePtr m_root;
    Node* m_current = nullptr;
    Node* m_viewed = nullptr;
    String m_report;
    bool m_failed = false;   // stops all reports until Reset
    bool m_refresh = false;  // report at the next Update
};

// A section for the length of a scope; leaving by an exception closes it too.
class ProfileSection {
  public:
    explicit ProfileSection(const char* name) : m_entered(ProfileTree::Get().Begin(name)) {}
    ~ProfileSection() {
        if (m_entered) ProfileTree::Get().End();
    }
    ProfileSection(const ProfileSection&) = delete;
    ProfileSection& operator=(const ProfileSection&) = delete;

  private:
    bool m_entered;
};

}  // namespace util

#define VEXA_JOIN2(a, b) a##b
#define VEXA_JOIN(a, b) VEXA_JOIN2(a, b)

// Measures the rest of the enclosing scope under `name`, a literal.
#define PROFILE_SECTION(name) const util::ProfileSection VEXA_JOIN(profileSection, __LINE__)(name)

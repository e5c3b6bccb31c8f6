#include "util/ProfileTree.h"

#include <algorithm>
#include <boost/format.hpp>

#include "util/Clock.h"

namespace util {

namespace {

constexpr size_t MAX_CHILDREN = 8;  // a ninth is accepted: the test comes before the adding
constexpr double MICROSECONDS = 1e6;

// One row of the table. The missing row has no calls, hence no spike and no rates.
String FormatRow(const ProfileTree::Node& node, const String& index, double parentTotal, double seconds,
                 double frames, bool withCalls) {
    const double perFrame = node.m_totalTime / frames * MICROSECONDS;
    String row =
        boost::str(boost::format("%c%s   %25s   %5.1f %%   %5.1f %%     %6.0f") %
                   (node.m_children.empty() ? ' ' : '*') % index % node.m_name %
                   (node.m_totalTime / parentTotal * 100) % (node.m_totalTime / seconds * 100) % perFrame);
    if (withCalls) {
        const double callsPerFrame = node.m_numCalls / frames;
        row += boost::str(boost::format("        %5.0f     %5.0f   %5.1f") % (node.m_maxTime * MICROSECONDS) %
                          (perFrame / callsPerFrame) % callsPerFrame);
    }
    return row + "\n";
}

void ResetCounters(ProfileTree::Node& node) {
    node.m_maxTime = node.m_totalTime = 0;
    node.m_numCalls = 0;
    for (const ProfileTree::NodePtr& child : node.m_children) ResetCounters(*child);
}

}  // namespace

ProfileTree& ProfileTree::Get() {
    static ProfileTree& s_tree = *new ProfileTree;  // abandoned at exit: destructors may be measured
    return s_tree;
}

ProfileTree::ProfileTree() {
    Reset();
    m_report = "No output generated yet.";
}

void ProfileTree::Reset() {
    m_updateTime = 1;
    m_numFrames = 0;
    m_enabled = false;
    m_report.clear();
    m_failed = false;
    m_refresh = true;
    m_root = std::make_unique<Node>("Main", nullptr);
    m_current = m_viewed = m_root.get();
    m_root->m_startTime = m_lastReport = Clock::Now();
}

void ProfileTree::Fail(const String& message) {
    m_failed = true;
    m_report = "ERROR: " + message + "\nThis problem must be fixed before any profiling can be done.";
}

ProfileTree::Node* ProfileTree::FindOrAddChild(const char* name) {
    for (const NodePtr& child : m_current->m_children) {
        if (child->m_name == name) return child.get();
    }
    if (m_current->m_children.size() > MAX_CHILDREN) {
        Fail(String("Too many children of node ") + m_current->m_name);
    }
    m_current->m_children.push_back(std::make_unique<Node>(name, m_current));
    return m_current->m_children.back().get();
}

bool ProfileTree::Begin(const char* name) {
    if (!m_enabled || m_failed) return false;
    for (const Node* open = m_current; open != nullptr; open = open->m_parent) {
        if (open->m_name == name) return false;
    }
    m_current = FindOrAddChild(name);
    m_current->m_startTime = Clock::Now();
    return true;
}

void ProfileTree::End() {
    if (m_current == m_root.get()) {
        Fail("Too many calls to End()");
        return;
    }
    const double elapsed = Clock::Now() - m_current->m_startTime;
    ++m_current->m_numCalls;
    m_current->m_totalTime += elapsed;
    m_current->m_maxTime = std::max(m_current->m_maxTime, elapsed);
    m_current = m_current->m_parent;
}

void ProfileTree::Update() {
    if (m_failed || !m_enabled) return;
    if (m_current != m_root.get()) {
        Fail("Profiler::Update() called within begin and end (fix code)");
        m_current = m_root.get();
        return;
    }
    const double now = Clock::Now();
    const double elapsed = now - m_root->m_startTime;
    ++m_numFrames;
    ++m_root->m_numCalls;
    m_root->m_totalTime += elapsed;
    m_root->m_maxTime = std::max(m_root->m_maxTime, elapsed);
    m_root->m_startTime = now;
    if (now - m_lastReport > m_updateTime || m_refresh) Report(now);
}

void ProfileTree::ToggleEnabled() {
    m_enabled = !m_enabled;
    m_refresh = true;
    m_root->m_startTime = m_lastReport = Clock::Now();
}

void ProfileTree::View(Node* node) {
    m_viewed = node;
    m_refresh = true;
}

void ProfileTree::ViewParent() {
    if (m_viewed->m_parent != nullptr) View(m_viewed->m_parent);
}

void ProfileTree::ViewChild(size_t index) {
    if (index >= m_viewed->m_children.size()) return;
    Node* const child = m_viewed->m_children[index].get();
    if (!child->m_children.empty()) View(child);
}

void ProfileTree::ViewSlowestChild() {
    const std::vector<NodePtr>& children = m_viewed->m_children;
    const auto slowest =
        std::max_element(children.begin(), children.end(),
                         [](const NodePtr& a, const NodePtr& b) { return a->m_totalTime < b->m_totalTime; });
    if (slowest != children.end() && !(*slowest)->m_children.empty()) View(slowest->get());
}

void ProfileTree::Report(double now) {
    const double seconds = now - m_lastReport;
    const double frames = m_numFrames;
    m_report = boost::str(boost::format("FPS: %04.2f\n\n") % (frames / seconds));
    m_report += String("Profile data for ") + m_viewed->m_name + "\n\n";
    // The font is 8-bit, so the micro sign is the one byte 0xB5.
    m_report += String(25, ' ') + " Name   %owner    %total   \xB5s/frame  frame-spike   \xB5s/call" +
                "   calls/frame\n\n";
    double missing = m_viewed->m_totalTime;
    for (size_t i = 0; i < m_viewed->m_children.size(); ++i) {
        const Node& child = *m_viewed->m_children[i];
        missing -= child.m_totalTime;
        m_report += FormatRow(child, std::to_string(i), m_viewed->m_totalTime, seconds, frames, true);
    }
    if (!m_viewed->m_children.empty()) {
        if (!m_viewed->m_missing) m_viewed->m_missing = std::make_unique<Node>("MISSING TIME", m_viewed);
        m_viewed->m_missing->m_totalTime = missing;
        m_report += FormatRow(*m_viewed->m_missing, " ", m_viewed->m_totalTime, seconds, frames, false);
    }
    ResetCounters(*m_root);
    m_numFrames = 0;
    m_lastReport = now;
    m_refresh = false;
}

}  // namespace util

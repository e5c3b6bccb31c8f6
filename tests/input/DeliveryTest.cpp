#include "InputFixture.h"
#include "support/LogCapture.h"
#include "util/Exception.h"

namespace test {
namespace {

// A delegator of its own, fed by hand.
class DeliveryTest : public testing::Test {
  protected:
    RecordingListenerPtr Add(const String& name) {
        RecordingListenerPtr listener = new RecordingListener(m_calls, name + ": ");
        m_delegator->AddListener(listener);
        return listener;
    }
    Calls Click() {
        m_calls.clear();
        gui::ClickEvent event;
        m_delegator->OnClick(event);
        Calls names;
        for (const String& call : m_calls) names.push_back(call.substr(0, call.find(':')));
        return names;
    }

    util::SharedPtr<gui::InputDelegator> m_delegator = new gui::InputDelegator;
    Calls m_calls;
};

TEST_F(DeliveryTest, LastAddedFirstAndHighestPriorityBeforeAll) {
    const RecordingListenerPtr a = Add("a"), b = Add("b"), c = Add("c");
    EXPECT_EQ(Click(), (Calls{"c", "b", "a"}));
    a->SetPriority(75);
    EXPECT_EQ(Click(), (Calls{"a", "c", "b"}));
    m_delegator->AddListener(b);  // to the head of its priority, and no more than once
    EXPECT_EQ(Click(), (Calls{"a", "b", "c"}));
    b->SetPriority(10);
    EXPECT_EQ(Click(), (Calls{"a", "c", "b"}));
    m_delegator->RemoveListener(*a);
    EXPECT_EQ(Click(), (Calls{"c", "b"}));
}

TEST_F(DeliveryTest, AddingAgainLeavesOneResortCallback) {
    const RecordingListenerPtr a = Add("a");
    for (int i = 0; i < 3; ++i) m_delegator->AddListener(a);
    EXPECT_EQ(a->GetOnPriorityChange().GetSize(), 1u);
    for (int i = 0; i < 3; ++i) {
        m_delegator->RemoveListener(*a);
        m_delegator->AddListener(a);
    }
    a->GetOnPriorityChange().Flush();
    EXPECT_EQ(a->GetOnPriorityChange().GetSize(), 1u);
}

TEST_F(DeliveryTest, EverybodyIsAskedAlsoAfterSomebodyTookTheEvent) {
    const RecordingListenerPtr a = Add("a"), b = Add("b");
    b->m_takes = true;
    gui::ClickEvent event;
    m_delegator->OnClick(event);
    EXPECT_TRUE(event.m_handled);
    EXPECT_EQ(m_calls, (Calls{"b: click (0,0) 0 x1", "a: click (0,0) 0 x1 (handled)"}));
}

TEST_F(DeliveryTest, TheDeadAreForgotten) {
    const RecordingListenerPtr a = Add("a");
    Add("dies at once");
    EXPECT_EQ(Click(), Calls{"a"});
    EXPECT_EQ(Click(), Calls{"a"});
}

TEST_F(DeliveryTest, NullIsRefused) {
    LogCapture log;
    EXPECT_THROW(m_delegator->AddListener(gui::InputListenerWeakPtr()), BadCoderException);
    EXPECT_TRUE(log.Contains("listener.Get()"));
}

// Does something in the middle of its own event.
class ActingListener : public gui::InputListener {
  public:
    explicit ActingListener(const std::function<void()>& action) : m_action(action) {}
    void OnClick(gui::ClickEvent&) override {
        ++m_clicks;
        m_action();
        ++m_finished;
    }
    std::function<void()> m_action;
    int m_clicks = 0;
    static inline int m_finished = 0;
};

TEST_F(DeliveryTest, AListenerMayLeaveInItsOwnEvent) {
    const RecordingListenerPtr a = Add("a");
    util::SharedPtr<ActingListener> leaver = new ActingListener([] {});
    leaver->m_action = [&] { m_delegator->RemoveListener(*leaver); };
    m_delegator->AddListener(leaver);
    const RecordingListenerPtr b = Add("b");
    EXPECT_EQ(Click(), (Calls{"b", "a"}));
    EXPECT_EQ(Click(), (Calls{"b", "a"}));
    EXPECT_EQ(leaver->m_clicks, 1);
}

TEST_F(DeliveryTest, AListenerMayDieInItsOwnEvent) {
    const RecordingListenerPtr a = Add("a");
    util::SharedPtr<ActingListener> dying = new ActingListener([] {});
    dying->m_action = [&] { dying = nullptr; };
    m_delegator->AddListener(dying);
    ActingListener::m_finished = 0;
    EXPECT_EQ(Click(), Calls{"a"});
    EXPECT_FALSE(dying);
    EXPECT_EQ(ActingListener::m_finished, 1);  // it was held to the end of its call
}

TEST_F(DeliveryTest, TheDelegatorMayDieInItsOwnEvent) {
    util::SharedPtr<ActingListener> killer = new ActingListener([] {});
    killer->m_action = [&] { m_delegator = nullptr; };
    const RecordingListenerPtr a = Add("a");
    m_delegator->AddListener(killer);
    gui::ClickEvent event;
    m_delegator->OnClick(event);
    EXPECT_EQ(m_calls.size(), 1u);
    a->SetPriority(3);  // whoever would be sorted is gone
}

class SeenKeysTest : public InputTest {};

TEST_F(SeenKeysTest, AKeyIsDownForThoseWhoSawItsPressUnhandled) {
    const util::SharedPtr<gui::InputDelegator> parent = new gui::InputDelegator;
    const RecordingListenerPtr child = new RecordingListener(m_calls);
    parent->AddListener(child);
    m_input.AddListener(parent);
    child->m_takes = true;
    Key(true, 'a', 'a');
    EXPECT_TRUE(child->IsKeyDownHere('a'));
    EXPECT_FALSE(parent->IsKeyDownHere('a')) << "the child took it";
    EXPECT_FALSE(m_listener->IsKeyDownHere('a')) << "so nobody behind saw it unhandled";
    child->m_takes = false;
    Key(true, 'b', 'b');
    EXPECT_TRUE(child->IsKeyDownHere('b') && parent->IsKeyDownHere('b') && m_listener->IsKeyDownHere('b'));
    child->m_takes = true;
    Key(false, 'b');
    EXPECT_FALSE(parent->IsKeyDownHere('b')) << "up is up, whoever took the release";
}

}  // namespace
}  // namespace test

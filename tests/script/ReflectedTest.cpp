#include "script/Reflected.h"

#include "ScriptFixture.h"
#include "script/Exceptions.h"

namespace script {

class ReflectedObjects : public test::Script {
  protected:
    ReflectedPtr Make(const String& name) { return new Reflected(name); }
};

TEST_F(ReflectedObjects, ChildrenOfOneNameAreNumbered) {
    const ReflectedPtr parent = Make("parent");
    for (const char* name : {"x", "x_2", "x_3"}) {
        const ReflectedPtr child = Make("x");
        parent->AddReflected(child);
        EXPECT_EQ(child->GetReflectedName(), name);
        EXPECT_EQ(parent->GetLocalValue(name), child);
        EXPECT_TRUE(parent->FindLocal(name)->IsConstant());
    }
}

TEST_F(ReflectedObjects, AChildMovesToItsNewParent) {
    const ReflectedPtr child = Make("child");
    Reflected::AddToRoot(child);
    EXPECT_TRUE(m_parser.GetRootClosure()->HasVariable("child"));
    EXPECT_THROW(child->SetReflectedName("other"), BadCoderException);
    m_gadget->AddReflected(child);
    EXPECT_FALSE(m_parser.GetRootClosure()->HasVariable("child"));
    EXPECT_EQ(child->GetOwner(), m_gadget.Get());
    EXPECT_EQ(child->GetIdentifier()->ToCode(), "Gadget.child");
    m_gadget->RemoveVariable("child");
    EXPECT_EQ(child->GetOwner(), nullptr);
    child->SetReflectedName("other");
    EXPECT_EQ(child->ToCode(), "other");
}

TEST_F(ReflectedObjects, OwnerFollowsAssignmentAndStaysWhileAnotherVariableHolds) {
    Run("x = Gadget; x = 1");
    EXPECT_EQ(m_gadget->GetOwner(), m_parser.GetRootClosure().Get());
    const ReflectedPtr loose = Make("loose");
    m_parser.GetRootClosure()->AddValue("y", loose);
    EXPECT_EQ(loose->GetOwner(), m_parser.GetRootClosure().Get());
    Run("y = 1");
    EXPECT_EQ(loose->GetOwner(), nullptr);
}

TEST_F(ReflectedObjects, RefuseCircles) {
    const ReflectedPtr child = Make("child");
    m_gadget->AddReflected(child);
    EXPECT_THROW(child->AddValue("up", m_gadget), ScriptException);
    EXPECT_FALSE(child->HasVariable("up"));
    EXPECT_THROW(child->AddReflected(m_gadget), ScriptException);
    EXPECT_EQ(Get("Gadget"), m_gadget);
    EXPECT_EQ(m_gadget->GetOwner(), m_parser.GetRootClosure().Get());
}

TEST_F(ReflectedObjects, VariablesHaveOneName) {
    const ReflectedPtr object = Make("object");
    object->AddValue("a", ValueToObject(1));
    EXPECT_THROW(object->AddValue("a", ValueToObject(2)), BadCoderException);
    EXPECT_THROW(Variable("a", nullptr), BadCoderException);
    EXPECT_EQ(object->GetValue("a")->ToCode(), "1");
    EXPECT_EQ(object->GetLocalValue("b"), nullptr);
    EXPECT_THROW(object->GetValue("b"), ScriptException);
    object->AddValue("B", ValueToObject(3));
    ASSERT_EQ(object->GetVariables().size(), 2u);
    EXPECT_EQ(object->GetVariables()[0]->GetName(), "B");
    object->RemoveVariable("absent");
}

TEST_F(ReflectedObjects, CommandsOfAllKinds) {
    const ReflectedPtr object = Make("object");
    Reflected::AddToRoot(object);
    int pokes = 0;
    object->AddCmd("poke", [&pokes] { ++pokes; });
    object->AddCmd("pokes", std::function<int()>([&pokes] { return pokes; }));
    object->AddCmd1("length", [](const String& text) { return static_cast<int>(text.size()); });
    object->AddCmd1(
        "same", +[](const ObjectPtr& any) { return any; });
    object->AddCmd2("box",
                    [](const math::Vec2& a, const math::Vec2& b) { return math::BoundingBox2f(a, b); });
    EXPECT_EQ(Run("object.poke; object.poke"), "");
    EXPECT_EQ(Run("object.pokes"), "2");
    EXPECT_EQ(Run("object.length \"four\""), "4");
    EXPECT_EQ(Run("object.same [1, true]"), "[1, true]");
    EXPECT_EQ(Run("object.box([0, 1], [2.5, 3])"), "[[0, 1], [2.5, 3]]");
    EXPECT_EQ(Run("object.length 4"), "");
    EXPECT_TRUE(m_log.Contains("Not a string"));
}

// A list keeps the command of a dead object; calling it fails and touches nothing.
TEST_F(ReflectedObjects, CommandsOutliveTheirObject) {
    Run("kept = [Gadget.Twice]");
    m_parser.GetRootClosure()->RemoveVariable("Gadget");
    m_gadget = nullptr;
    EXPECT_EQ(Run("kept 0 3"), "");
    EXPECT_TRUE(m_log.Contains("The object of this command is gone"));
}

}  // namespace script

#include "script/Attributes.h"

#include "ScriptFixture.h"
#include "support/Settings.h"

namespace script {

class Attributes : public test::Script {
  protected:
    template <class T>
    int* CountChanges(const TAttribPtr<T>& attrib) {
        const std::shared_ptr<int> count = std::make_shared<int>(0);
        m_counts.push_back(count);
        attrib->AddOnChange(
            new util::Callback([count] { ++*count; }, util::WeakPtr<util::Pointee>(m_gadget)));
        return count.get();
    }

  private:
    std::vector<std::shared_ptr<int>> m_counts;
};

TEST_F(Attributes, SetTellsOfChangesOnly) {
    const int* const changes = CountChanges<float>(m_gadget->m_speed);
    m_gadget->m_speed->Set(1.5f);
    EXPECT_EQ(*changes, 0);
    m_gadget->m_speed->Set(2);
    EXPECT_EQ(*changes, 1);
    Run("Gadget.speed = 2.0");
    EXPECT_EQ(*changes, 1);
    Run("Gadget.speed = 3");
    EXPECT_EQ(*changes, 2);
    EXPECT_EQ(m_gadget->m_speed->Get(), 3);
    EXPECT_EQ(m_gadget->m_speed->GetDefault(), 1.5f);
}

// What scripts read and what is saved follows a native change, and no later run undoes it.
TEST_F(Attributes, NativeChangesStay) {
    Run("Gadget.speed = 5");
    m_gadget->m_speed->Set(0.5f);
    EXPECT_EQ(Run("Gadget.speed"), "0.5");
    Run("0");
    m_parser.Update();
    EXPECT_EQ(m_gadget->m_speed->Get(), 0.5f);
}

TEST_F(Attributes, BindingsFollowAndOutliveNativeChanges) {
    Run("Gadget.speed = { Gadget.count * 2 }");
    EXPECT_EQ(m_gadget->m_speed->Get(), 6);
    m_gadget->m_count->Set(5);
    EXPECT_EQ(m_gadget->m_speed->Get(), 6);
    m_parser.Update();
    EXPECT_EQ(m_gadget->m_speed->Get(), 10);
    m_gadget->m_speed->Set(1);
    EXPECT_EQ(m_gadget->m_speed->Get(), 1);
    EXPECT_TRUE(m_gadget->m_speed->IsBound());
    m_parser.Update();
    EXPECT_EQ(m_gadget->m_speed->Get(), 10);
    m_gadget->m_speed->SetValue(ValueToObject(2.0f));
    EXPECT_FALSE(m_gadget->m_speed->IsBound());
    m_parser.Update();
    EXPECT_EQ(m_gadget->m_speed->Get(), 2);
}

TEST_F(Attributes, ABindingThatGoesBadIsDroppedWithoutAWord) {
    Run("scale = 2; Gadget.speed = { scale * 2 }");
    EXPECT_EQ(m_gadget->m_speed->Get(), 4);
    Run("scale = \"wide\"");
    EXPECT_EQ(m_gadget->m_speed->Get(), 4);
    EXPECT_FALSE(m_gadget->m_speed->IsBound());
    EXPECT_EQ(m_log.Count("speed was bound to bad type"), 1);
    EXPECT_EQ(Run("Gadget.speed"), "4");
}

// A command fails by a code assertion, a null by std::runtime_error: neither may leave.
TEST_F(Attributes, AnyFailureOfABindingEndsThere) {
    m_gadget->m_speed->SetValue(new IntrinsicCmd([]() -> ObjectPtr { throw std::runtime_error("broken"); }));
    EXPECT_EQ(m_gadget->m_speed->Get(), 1.5f);
    EXPECT_TRUE(m_log.Contains("speed was bound to bad type"));
    m_gadget->m_size->SetValue(ValueToObject("wide"));
    EXPECT_EQ(m_gadget->m_sizeValue, math::Vec2i(800, 600));
    EXPECT_EQ(Run("Gadget.size"), "[800, 600]");
}

// Values that live elsewhere are read as they are now, without a Set.
TEST_F(Attributes, ForeignValuesAreBroughtInLine) {
    m_gadget->m_levelValue = 0.75f;
    m_gadget->m_sizeValue = {1024, 768};
    EXPECT_EQ(Run("Gadget.level + 0"), "0.75");
    EXPECT_EQ(m_gadget->m_size->ToAssignment()->ToCode(), "Gadget.size = [1024, 768]");
    Run("Gadget.size = [640, 480]");
    EXPECT_EQ(m_gadget->m_sizeValue, math::Vec2i(640, 480));
    Run("Gadget.level = 1");  // the int stays, since it stands for the value
    EXPECT_EQ(m_gadget->m_level->ToAssignment()->ToCode(), "Gadget.level = 1");
    m_gadget->m_level->Set(-3);
    EXPECT_EQ(m_gadget->m_levelValue, 0);
    EXPECT_EQ(Run("Gadget.level"), "0");
}

// A widget may hold the attribute of an object that has died.
TEST_F(Attributes, ForeignValuesOfTheDead) {
    const TAttribPtr<float> level = m_gadget->m_level;
    const TAttribPtr<math::Vec2i> size = m_gadget->m_size;
    m_parser.GetRootClosure()->RemoveVariable("Gadget");
    m_gadget = nullptr;
    level->Set(1);
    size->Set({1, 1});
    EXPECT_EQ(level->Get(), 0.5f);
    EXPECT_EQ(size->Get(), math::Vec2i(800, 600));
}

TEST_F(Attributes, EachTypeComesBackFromItsText) {
    test::CheckSettings(*m_gadget);
}

// A callback may end the attribute's owner, and a binding another attribute's.
TEST_F(Attributes, OwnersMayDieMeanwhile) {
    const ReflectedPtr victim = new Reflected("Victim");
    Reflected::AddToRoot(victim);
    const AttribPtr<int> value = DeclareAttrib(*victim, "value", 1);
    Run("Gadget.count = { Gadget.speed; 4 }; Victim.value = { 5 }");
    m_parser.GetRootClosure()->AddCmd("kill",
                                      [this] { m_parser.GetRootClosure()->RemoveVariable("Victim"); });
    Run("Gadget.count = { kill; 6 }");
    m_parser.Update();
    EXPECT_EQ(m_gadget->m_count->Get(), 6);
    EXPECT_EQ(value->Get(), 5);
}

}  // namespace script

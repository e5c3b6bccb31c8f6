#include "app/entities/PointList.h"

#include "script/CodeWriter.h"
#include "script/Exceptions.h"

namespace app {

namespace {

void WritePoints(script::CodeWriter& out, const PointList::Points& points) {
    out.Append("[");
    const char* separator = "";
    for (const math::TVector2<double>& point : points) {
        out.Append(separator).Append("[").Append(script::DoubleToCode(point.x));
        out.Append(", ").Append(script::DoubleToCode(point.y)).Append("]");
        separator = ", ";
    }
    out.Append("]");
}

class PointListCode : public script::Expression {
  public:
    explicit PointListCode(std::shared_ptr<const PointList::Points> points) : m_points(std::move(points)) {}

    script::ObjectPtr Evaluate(const script::ClosurePtr&) override {
        THROW(script::ScriptException, "Points are for files alone");
    }
    void WriteCode(script::CodeWriter& out) const override { WritePoints(out, *m_points); }

  private:
    const std::shared_ptr<const PointList::Points> m_points;
};

}  // namespace

script::ExpressionPtr PointList::ToExpression() const {
    return new PointListCode(m_points);
}

void PointList::WriteCode(script::CodeWriter& out) const {
    WritePoints(out, *m_points);
}

}  // namespace app

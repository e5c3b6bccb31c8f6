#pragma once

#include <memory>
#include <vector>

#include "math/Vector.h"
#include "script/Expressions.h"
#include "script/Objects.h"

namespace app {

// Many points as a value that is only ever written to a file, as a list of lists of two numbers. A great
// scene has a hundred thousand of them, and an object and a node of the tree for each number would take far
// longer than their text.
class PointList : public script::Object {
  public:
    using Points = std::vector<math::TVector2<double>>;

    explicit PointList(Points points) : m_points(std::make_shared<const Points>(std::move(points))) {}

    script::ExpressionPtr ToExpression() const override;
    void WriteCode(script::CodeWriter& out) const override;

  private:
    const std::shared_ptr<const Points> m_points;
};

}  // namespace app

#pragma once

#include <set>
#include <vector>

#include "util/SharedPtr.h"
#include "util/VectorPOD.h"

// Forward declarations and the names of pointers and containers.
namespace physics {

class AbstractBody;
class Body;
class Circle;
class Circular;
class Collider;
class Constraint;
class ConstraintSolver;
class Contact;
class ContactCache;
class ContactPool;
class Geom;
class Hinge;
class Joint;
class Particle;
class Plane;
class Polygon;
class Simulation;
class SPH;
class SpringJoint;
class WorldGeom;
struct SolveConstants;
struct StepSettings;

// Orders owned objects by creation number, so that sets are walked alike in every run; addresses would
// not be. Null comes first.
template <class T>
struct ByID {
    bool operator()(const util::SharedPtr<T>& a, const util::SharedPtr<T>& b) const {
        if (!a || !b) return !a && b;
        return a.Get()->GetID() < b.Get()->GetID();
    }
};

using AbstractBodyPtr = util::SharedPtr<AbstractBody>;
using BodyPtr = util::SharedPtr<Body>;
using CirclePtr = util::SharedPtr<Circle>;
using ContactPtr = util::SharedPtr<Contact>;
using GeomPtr = util::SharedPtr<Geom>;
using HingePtr = util::SharedPtr<Hinge>;
using JointPtr = util::SharedPtr<Joint>;
using ParticlePtr = util::SharedPtr<Particle>;
using PlanePtr = util::SharedPtr<Plane>;
using PolygonPtr = util::SharedPtr<Polygon>;
using SpringJointPtr = util::SharedPtr<SpringJoint>;
using WorldGeomPtr = util::SharedPtr<WorldGeom>;

using BodyList = std::vector<BodyPtr>;
using ParticleList = std::vector<ParticlePtr>;
using AbstractBodyList = util::VectorPOD<AbstractBody*>;
using GeomSet = std::set<GeomPtr, ByID<Geom>>;
using HingeSet = std::set<HingePtr, ByID<Hinge>>;
using JointSet = std::set<JointPtr, ByID<Joint>>;

}  // namespace physics

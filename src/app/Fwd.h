#pragma once

#include <map>
#include <set>
#include <vector>

#include "physics/Fwd.h"
#include "util/SharedPtr.h"
#include "util/String.h"

// Names of the application's classes and their counted pointers.
namespace script {
class Object;
}

namespace app {

class Action;
class App;
class AppGUI;
class AppGUISettings;
class Background;
class Chain;
class CircleEntity;
class Entity;
class FiniteGeomEntity;
class FixJointEntity;
class GeomEntity;
class HingeEntity;
class JointEntity;
class PlaneEntity;
class PolyEntity;
class Scene;
class SceneRenderer;
class SceneWriter;
class Selection;
class Snapshot;
class SpringEntity;
class Tool;
class Undoer;
class View;

using ActionPtr = util::SharedPtr<Action>;
using AppGUIPtr = util::SharedPtr<AppGUI>;
using AppGUISettingsPtr = util::SharedPtr<AppGUISettings>;
using BackgroundPtr = util::SharedPtr<Background>;
using ChainPtr = util::SharedPtr<Chain>;
using EntityPtr = util::SharedPtr<Entity>;
using GeomEntityPtr = util::SharedPtr<GeomEntity>;
using CircleEntityPtr = util::SharedPtr<CircleEntity>;
using FixJointEntityPtr = util::SharedPtr<FixJointEntity>;
using HingeEntityPtr = util::SharedPtr<HingeEntity>;
using JointEntityPtr = util::SharedPtr<JointEntity>;
using PlaneEntityPtr = util::SharedPtr<PlaneEntity>;
using PolyEntityPtr = util::SharedPtr<PolyEntity>;
using SnapshotPtr = util::SharedPtr<Snapshot>;
using SpringEntityPtr = util::SharedPtr<SpringEntity>;
using ToolPtr = util::SharedPtr<Tool>;

using EntityList = std::vector<EntityPtr>;  // in drawing order: the last one is on top
// By creation number, so that what is done to a set of entities is done alike in every run.
using EntitySet = std::set<EntityPtr, physics::ByID<Entity>>;
using GeomList = std::vector<physics::GeomPtr>;

// One entity as saved: values by key, in byte order of the keys. Scene files and snapshots consist of them.
using EntitySerializer = std::map<String, util::SharedPtr<script::Object>>;

}  // namespace app

#pragma once

#include <map>
#include <set>
#include <vector>

#include "app/Fwd.h"
#include "app/entities/JointEntity.h"
#include "app/scene/SceneSettings.h"
#include "math/Vector.h"
#include "script/Fwd.h"
#include "script/Guest.h"

namespace app {

// One reading of a scene file. Numbers of bodies, geoms and chains are the file's own and mean nothing
// beyond it, so a scene can be read into another one.
//
// First all statements are read into maps of values, whose order then does not matter to the version; then
// the shapes are built, then the bodies from them, then what refers to shapes; only in the end does all of it
// enter the scene, in the order of the file. Whatever fails costs the entity or statement that it stands in.
class SceneReader {
  public:
    explicit SceneReader(Scene& scene);
    ~SceneReader();

    void Read(const script::CodeBlock& code);

    // The settings of the world that the file brings along, by name.
    const SceneSettings::Values& GetSettings() const { return m_settings; }

    // Largest length, and most vertices of one outline, that is believed: beyond, numbers are damage, and
    // building would take for ever.
    static constexpr float MAX_LENGTH = 1e6f;
    static constexpr float MAX_EXTENT = 1e4f;  // of a shape to each side: a larger one throws all others out
    static constexpr size_t MAX_VERTICES = 10000;
    static constexpr size_t MAX_VERTEX_PAIRS = 400000000;  // of all outlines: seconds
    static constexpr size_t MAX_POLYGONS = 6000;           // half a gigabyte when all have been touched
    static constexpr size_t MAX_ENTITIES = 30000;
    static constexpr script::Int MAX_CHAIN_PLACE = 100000;

    // % of the work of a load, which is done before the reading.
    static constexpr int PARSING_SHARE = 50;

  private:
    using GeomMap = std::map<unsigned int, physics::GeomPtr>;
    using BodyMap = std::map<unsigned int, physics::GeomSet>;
    using ChainMap = std::map<script::Int, std::map<script::Int, EntityPtr>>;
    using NumberMap = std::map<script::Int, script::Int>;
    // The values of one entity, and which of the file's it is.
    struct Record {
        size_t m_place;
        String m_type;
        EntitySerializer m_values;
    };

    void TellProgress();
    void ReadStatements(const script::CodeBlock& code);
    void ReadStatement(const script::ExpressionPtr& statement);
    void ReadEntity(script::FunctionDeclaration& declaration);
    void ReadAssignment(const script::Assignment& assignment);

    void SortShapes();
    void DeserializeBody(Record& record);
    void Enter(const EntityPtr& entity, const Record& record);
    static script::Int Renumber(NumberMap& numbers, std::set<script::Int>& taken, script::Int number);
    void RenumberGroup(EntitySerializer& values);
    void Warn(const String& text) const;
    void ChargePolygon(size_t vertices);
    bool IsFull() const;
    GeomEntityPtr BuildShape(const String& type, const EntitySerializer& values);
    GeomEntityPtr BuildPolygon(const EntitySerializer& values);
    GeomEntityPtr BuildCircle(const EntitySerializer& values) const;
    GeomEntityPtr BuildPlane(const EntitySerializer& values) const;
    void PlaceShape(GeomEntity& entity, EntitySerializer& values) const;
    void EnterShape(const GeomEntityPtr& entity, const EntitySerializer& values);
    void DeserializeNonbody(Record& record);
    JointEntityPtr BuildJoint(const String& type, const EntitySerializer& values) const;
    void TieJoint(JointEntity& joint, const EntitySerializer& values) const;
    physics::GeomPtr GetGeom(const EntitySerializer& values, const char* key) const;
    void DeserializeWater(const EntitySerializer& values) const;
    void ReadSettings(const EntitySerializer& values);
    void LinkChain(const EntityPtr& entity, const EntitySerializer& values);

    void BuildBodies();
    void EnterScene();
    void FinishChains();

    float GetScale() const;

    Scene& m_scene;
    std::set<script::Int> m_takenGroups, m_takenChains;  // by the scene, and by what was read
    script::GuestPtr m_guest;                            // whose file it is; what all of it may take
    script::ClosurePtr m_closure;                        // in which the file's statements are evaluated
    script::Int m_version = 0;                           // 0 until the file says otherwise
    size_t m_place = 0;                                  // of the next entity in the file
    size_t m_numPolygons = 0, m_vertexPairs = 0;         // so far
    std::vector<Record> m_shapes;
    std::vector<Record> m_others;
    GeomMap m_geoms;                         // by the file's numbers; 0 is the world geom
    BodyMap m_bodies;                        // the geoms of each body, by the file's numbers
    ChainMap m_chains;                       // links by their places, by the file's numbers
    NumberMap m_groups, m_chainNumbers;      // from the file's numbers to the scene's
    std::map<size_t, EntityPtr> m_entities;  // by their places in the file
    SceneSettings::Values m_settings;

    const double m_begin;  // these two in s, of util::Clock
    double m_lastTold;     // at first the beginning
    size_t m_steps = 0;    // statements read and entities built so far
    size_t m_allSteps = 1;
};

}  // namespace app

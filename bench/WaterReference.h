#pragma once

#include <cstdint>
#include <vector>

#include "math/Vector.h"

namespace bench {

struct WaterSettings {
    float radius;
    float influence;
    float density;
    float soundSpeed;
    float viscosity;  // multiplier included
    float pressMultiplier;
    float timeStep;  // s
    int sweeps;
};

// The fluid equations without bodies in plain form: one array of structs, a grid over the box of all drops, a
// list of pairs. What the engine's pass is measured against.
class WaterReference {
  public:
    struct Drop {
        math::Vec2 pos;
        math::Vec2 vel;
        math::Vec2 force;
        math::Vec2 viscositySum;
        math::Vec2 gradientSum;
        math::Vec2 shift;
        float density;
        float expected;
        float response;
        float change;
        float pressure;
        float previous;
    };

    WaterReference(const WaterSettings& settings, std::vector<Drop> drops);

    void Pass();
    const std::vector<Drop>& GetDrops() const { return m_drops; }
    size_t GetPairCount() const { return m_pairs.size(); }

  private:
    struct Pair {
        uint32_t i;
        uint32_t j;
        float dist;
        math::Vec2 delta;
        math::Vec2 gradient;
    };

    void FillGrid();
    void FindPairs();
    void PairCells(int x, int y, int otherX, int otherY);
    void TestPair(uint32_t i, uint32_t j);
    void SumDensities();
    void SumForces();
    void Predict();
    void CalcShifts();
    void Correct();
    const std::vector<uint32_t>* GetCell(int x, int y) const;

    WaterSettings m_settings;
    float m_h;
    float m_mass;
    std::vector<Drop> m_drops;
    std::vector<std::vector<uint32_t>> m_cells;
    int m_columns = 0;
    int m_rows = 0;
    std::vector<Pair> m_pairs;
};

}  // namespace bench

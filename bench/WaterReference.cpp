#include "bench/WaterReference.h"

#include <algorithm>
#include <cmath>

namespace bench {

using math::Vec2;

WaterReference::WaterReference(const WaterSettings& settings, std::vector<Drop> drops)
    : m_settings(settings),
      m_h(settings.radius * settings.influence),
      m_mass(settings.density * math::PI * settings.radius * settings.radius),
      m_drops(std::move(drops)) {}

void WaterReference::Pass() {
    FillGrid();
    FindPairs();
    SumDensities();
    SumForces();
    Predict();
    for (int sweep = 0; sweep < m_settings.sweeps; ++sweep) {
        CalcShifts();
        Correct();
    }
    CalcShifts();
    const float dt = m_settings.timeStep;
    for (Drop& drop : m_drops) drop.force += drop.shift * (m_mass / (dt * dt));
}

void WaterReference::FillGrid() {
    Vec2 min = m_drops.front().pos;
    Vec2 max = min;
    for (const Drop& drop : m_drops) {
        min = {std::min(min.x, drop.pos.x), std::min(min.y, drop.pos.y)};
        max = {std::max(max.x, drop.pos.x), std::max(max.y, drop.pos.y)};
    }
    m_columns = static_cast<int>((max.x - min.x) / m_h) + 1;
    m_rows = static_cast<int>((max.y - min.y) / m_h) + 1;
    m_cells.resize(static_cast<size_t>(m_columns * m_rows));
    for (std::vector<uint32_t>& cell : m_cells) cell.clear();
    for (uint32_t i = 0; i < m_drops.size(); ++i) {
        const Vec2 p = m_drops[i].pos - min;
        const int cell = static_cast<int>(p.y / m_h) * m_columns + static_cast<int>(p.x / m_h);
        m_cells[static_cast<size_t>(cell)].push_back(i);
    }
}

const std::vector<uint32_t>* WaterReference::GetCell(int x, int y) const {
    if (x < 0 || x >= m_columns || y >= m_rows) return nullptr;
    return &m_cells[static_cast<size_t>(y * m_columns + x)];
}

void WaterReference::FindPairs() {
    m_pairs.clear();
    for (int y = 0; y < m_rows; ++y) {
        for (int x = 0; x < m_columns; ++x) {
            const std::vector<uint32_t>& cell = *GetCell(x, y);
            for (size_t i = 0; i < cell.size(); ++i) {
                for (size_t j = i + 1; j < cell.size(); ++j) TestPair(cell[i], cell[j]);
            }
            PairCells(x, y, x + 1, y);
            for (int dx = -1; dx <= 1; ++dx) PairCells(x, y, x + dx, y + 1);
        }
    }
}

void WaterReference::PairCells(int x, int y, int otherX, int otherY) {
    const std::vector<uint32_t>* const other = GetCell(otherX, otherY);
    if (!other) return;
    for (const uint32_t i : *GetCell(x, y)) {
        for (const uint32_t j : *other) TestPair(i, j);
    }
}

void WaterReference::TestPair(uint32_t i, uint32_t j) {
    const Vec2 delta = m_drops[j].pos - m_drops[i].pos;
    const float distSq = math::LengthSquared(delta);
    if (distSq < m_h * m_h) m_pairs.push_back({i, j, std::sqrt(distSq), delta, {}});
}

void WaterReference::SumDensities() {
    const float norm = 7 / (math::PI * m_h * m_h) * m_mass;
    const float gradientNorm = 140 / (math::PI * std::pow(m_h, 4.0f)) * m_mass;
    for (Drop& drop : m_drops) drop.density = norm;
    for (Pair& pair : m_pairs) {
        const float q = pair.dist / m_h;
        const float u = 1 - q;
        const float w = norm * u * u * u * u * (1 + 4 * q);
        m_drops[pair.i].density += w;
        m_drops[pair.j].density += w;
        pair.gradient = pair.delta * (gradientNorm * u * u * u);
    }
}

void WaterReference::SumForces() {
    const float norm = 40 / (math::PI * std::pow(m_h, 5.0f));
    for (Drop& drop : m_drops) drop.viscositySum = Vec2();
    for (const Pair& pair : m_pairs) {
        Drop& a = m_drops[pair.i];
        Drop& b = m_drops[pair.j];
        const Vec2 viscosity = (b.vel - a.vel) * (norm * (m_h - pair.dist) / (a.density * b.density));
        a.viscositySum += viscosity;
        b.viscositySum -= viscosity;
    }
    for (Drop& drop : m_drops) drop.force = drop.viscositySum * (m_settings.viscosity * m_mass * m_mass);
}

void WaterReference::Predict() {
    const float dt = m_settings.timeStep;
    for (Drop& drop : m_drops) {
        drop.expected = drop.density;
        drop.response = 0;
        drop.gradientSum = Vec2();
        drop.previous = drop.pressure;
    }
    for (const Pair& pair : m_pairs) {
        Drop& a = m_drops[pair.i];
        Drop& b = m_drops[pair.j];
        const Vec2 apart = (a.vel + a.force * (dt / m_mass)) - (b.vel + b.force * (dt / m_mass));
        const float change = dt * math::Dot(pair.gradient, apart);
        const float square = math::LengthSquared(pair.gradient);
        a.expected += change;
        b.expected += change;
        a.response += square;
        b.response += square;
        a.gradientSum += pair.gradient;
        b.gradientSum -= pair.gradient;
    }
    for (Drop& drop : m_drops) {
        drop.response =
            dt * dt / (drop.density * drop.density) * (math::LengthSquared(drop.gradientSum) + drop.response);
    }
}

void WaterReference::CalcShifts() {
    const float dt = m_settings.timeStep;
    for (Drop& drop : m_drops) drop.shift = Vec2();
    for (const Pair& pair : m_pairs) {
        Drop& a = m_drops[pair.i];
        Drop& b = m_drops[pair.j];
        const float share =
            dt * dt * (a.pressure / (a.density * a.density) + b.pressure / (b.density * b.density));
        a.shift -= pair.gradient * share;
        b.shift += pair.gradient * share;
    }
}

void WaterReference::Correct() {
    const float c = m_settings.soundSpeed;
    const float softness = 1 / (c * c * m_settings.pressMultiplier);
    for (Drop& drop : m_drops) drop.change = 0;
    for (const Pair& pair : m_pairs) {
        Drop& a = m_drops[pair.i];
        Drop& b = m_drops[pair.j];
        const float change = math::Dot(pair.gradient, a.shift - b.shift);
        a.change += change;
        b.change += change;
    }
    for (Drop& drop : m_drops) {
        const float missing = drop.expected + drop.change - m_settings.density - drop.pressure * softness;
        const float next = drop.pressure + 0.9f * missing / (softness + drop.response) +
                           0.4f * (drop.pressure - drop.previous);
        drop.previous = drop.pressure;
        drop.pressure = std::max(next, 0.0f);
    }
}

}  // namespace bench

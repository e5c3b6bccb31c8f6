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
    if (distSq < m_h * m_h) m_pairs.push_back({i, j, std::sqrt(distSq), delta});
}

void WaterReference::SumDensities() {
    const float norm = 315 / (64 * math::PI * std::pow(m_h, 9.0f)) * m_mass;
    for (Drop& drop : m_drops) drop.density = norm * std::pow(m_h, 6.0f);
    for (const Pair& pair : m_pairs) {
        const float q = m_h * m_h - pair.dist * pair.dist;
        m_drops[pair.i].density += norm * q * q * q;
        m_drops[pair.j].density += norm * q * q * q;
    }
    const float c = m_settings.soundSpeed;
    for (Drop& drop : m_drops) drop.pressure = c * c * (drop.density - m_settings.density);
}

void WaterReference::SumForces() {
    const float norm = 45 / (math::PI * std::pow(m_h, 6.0f));
    for (Drop& drop : m_drops) drop.pressureSum = drop.viscositySum = Vec2();
    for (const Pair& pair : m_pairs) {
        Drop& a = m_drops[pair.i];
        Drop& b = m_drops[pair.j];
        const float q = m_h - pair.dist;
        const float inverse = 1 / (a.density * b.density);
        const Vec2 pressure = pair.delta * ((a.pressure + b.pressure) / 2 * inverse * norm * q * q);
        const Vec2 viscosity = (b.vel - a.vel) * (norm * q * inverse);
        a.pressureSum += pressure;
        b.pressureSum -= pressure;
        a.viscositySum += viscosity;
        b.viscositySum -= viscosity;
    }
    for (Drop& drop : m_drops) {
        drop.force +=
            (drop.pressureSum * -m_settings.pressMultiplier + drop.viscositySum * m_settings.viscosity) *
            (m_mass * m_mass);
    }
}

}  // namespace bench

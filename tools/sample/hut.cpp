// SPDX-License-Identifier: Apache-2.0
#include "tools/sample/hut.h"

#include <algorithm>
#include <cmath>

#include "tools/sample/noise.h"

namespace sample {
namespace {

constexpr float Width = 4.6F;
constexpr float Depth = 6.2F;
constexpr float WallHeight = 2.5F;
constexpr float RoofHeight = 1.9F;
constexpr float Overhang = 0.45F;
constexpr float Yaw = 0.55F;  // radians
constexpr Colour SunLight = {1.62F, 1.48F, 1.25F};
constexpr Colour SkyLight = {0.22F, 0.28F, 0.38F};

bool Within(float value, float low, float high) {
    return value >= low && value <= high;
}

}  // namespace

Hut::Face Hut::MakeFace(Kind kind, Point corner, Point along, Point up) {
    return {kind, corner, along, up, Normalised(Cross(up, along))};
}

Hut::Hut(Terrain const& terrain) : m_terrain(terrain) {
    m_centre = {9.4F, 0, 31};
    m_centre.y = terrain.Height(m_centre.x, m_centre.z) - 0.05F;
    const Point right{std::cos(Yaw), 0, std::sin(Yaw)};
    const Point back{-std::sin(Yaw), 0, std::cos(Yaw)};
    const Point up{0, 1, 0};
    const Point frontLeft = m_centre - right * (Width / 2) - back * (Depth / 2);
    const Point frontRight = frontLeft + right * Width;
    const Point backLeft = frontLeft + back * Depth;
    const Point backRight = frontRight + back * Depth;
    const float gable = WallHeight + RoofHeight;
    m_faces[0] = MakeFace(Kind::Gable, frontLeft, right * Width, up * gable);
    m_faces[1] = MakeFace(Kind::Wall, backLeft, back * -Depth, up * WallHeight);
    m_faces[2] = MakeFace(Kind::Wall, frontRight, back * Depth, up * WallHeight);
    m_faces[3] = MakeFace(Kind::Gable, backRight, right * -Width, up * gable);
    const Point ridge = frontLeft + right * (Width / 2) + up * gable - back * Overhang;
    const float reach = 1 + Overhang / (Width / 2);
    const Point leftSlope = (right * (-Width / 2) - up * RoofHeight) * reach;
    const Point rightSlope = (right * (Width / 2) - up * RoofHeight) * reach;
    const Point ridgeLine = back * (Depth + 2 * Overhang);
    m_faces[4] = MakeFace(Kind::Roof, ridge + ridgeLine + leftSlope, ridgeLine * -1.0F, leftSlope * -1.0F);
    m_faces[5] = MakeFace(Kind::Roof, ridge + rightSlope, ridgeLine, rightSlope * -1.0F);
}

bool Hut::Meets(Face const& face, Point from, Point direction, Hit& hit) {
    const float facing = Dot(direction, face.normal);
    if (std::fabs(facing) < 1e-6F) return false;
    hit.distance = Dot(face.corner - from, face.normal) / facing;
    if (hit.distance < 0.02F) return false;
    const Point inside = from + direction * hit.distance - face.corner;
    hit.u = Dot(inside, face.along) / Dot(face.along, face.along);
    hit.v = Dot(inside, face.up) / Dot(face.up, face.up);
    if (!Within(hit.u, 0, 1) || !Within(hit.v, 0, 1)) return false;
    if (face.kind != Kind::Gable) return true;
    const float top = WallHeight + RoofHeight * (1 - std::fabs(2 * hit.u - 1));
    return hit.v * (WallHeight + RoofHeight) <= top;
}

float Hut::Sunlight(Point at) const {
    const Point gap = at - m_centre;
    if (std::fabs(gap.x) > 16 || std::fabs(gap.z) > 16) return 1;
    int blocked = 0;
    // Several rays, since the sun has a size.
    for (int i = 0; i < 4; ++i) {
        const float jitter = 0.012F * static_cast<float>(i - 2);
        const Point direction = SunDirection() + Point{jitter, -jitter, jitter};
        Hit hit;
        for (Face const& face : m_faces) {
            if (Meets(face, at, direction, hit)) {
                ++blocked;
                break;
            }
        }
    }
    return 1 - static_cast<float>(blocked) / 4;
}

// Weathered planks, upright in the gable and level in the walls.
Colour Hut::Boards(float along, float up, bool gable) const {
    const float across = gable ? along : up;
    const float length = gable ? up : along;
    const float place = across / 0.17F;
    const auto board = static_cast<int32_t>(std::floor(place));
    const float inBoard = place - std::floor(place);
    const uint32_t seed = m_terrain.Seed() + 400;
    const float tone = 0.72F + 0.5F * Unit(board, gable ? 1 : 2, seed);
    const float grain = 1 + 0.30F * Fractal(length * 1.3F + static_cast<float>(board) * 7, across * 38, 4, seed + 1) +
                        0.18F * Fractal(length * 0.6F, across * 2, 3, seed + 5);
    const float joint = Smooth(0.0F, 0.09F, std::min(inBoard, 1 - inBoard));
    const float damp = Mix(0.62F, 1.0F, Smooth(0.0F, 0.55F, up));
    const Colour wood = Blend({0.165F, 0.062F, 0.040F}, {0.21F, 0.115F, 0.075F}, Unit(board, 7, seed));
    return wood * (tone * grain * Mix(0.25F, 1.0F, joint) * damp);
}

Colour Hut::Shingles(float along, float up) const {
    const float place = up / 0.21F;
    const auto row = static_cast<int32_t>(std::floor(place));
    const float inRow = place - std::floor(place);
    const float shifted = along / 0.16F + 0.5F * static_cast<float>(row & 1) + 0.2F * Unit(row, 3, 11);
    const auto tile = static_cast<int32_t>(std::floor(shifted));
    const float inTile = shifted - std::floor(shifted);
    const uint32_t seed = m_terrain.Seed() + 420;
    const float tone = 0.65F + 0.6F * Unit(tile, row, seed);
    const float edge = Smooth(0.0F, 0.16F, inRow) * Mix(0.55F, 1.0F, Smooth(0.0F, 0.1F, std::min(inTile, 1 - inTile)));
    const float moss = Smooth(0.05F, 0.30F, Fractal(along * 0.9F, up * 0.9F, 5, seed + 2));
    const Colour slate = Blend({0.125F, 0.115F, 0.110F}, {0.085F, 0.100F, 0.040F}, moss);
    return slate * (tone * Mix(0.40F, 1.0F, edge) * (1 + 0.25F * Noise(along * 30, up * 30, seed + 9)));
}

Colour Hut::Shade(Face const& face, Hit const& hit) const {
    const float along = hit.u * std::sqrt(Dot(face.along, face.along));
    const float up = hit.v * std::sqrt(Dot(face.up, face.up));
    Colour albedo = face.kind == Kind::Roof ? Shingles(along, up) : Boards(along, up, face.kind == Kind::Gable);
    const bool opening = face.kind == Kind::Gable
                             ? Within(along, 2.75F, 3.75F) && Within(up, 1.15F, 2.15F)
                             : Within(std::fabs(along - 3.1F), 0.55F, 1.45F) && Within(up, 1.15F, 2.05F);
    const bool isDoor = face.kind == Kind::Gable && Within(along, 0.75F, 1.75F) && up < 2.1F;
    float gloss = 0;
    if (isDoor) {
        const float frame = std::min(std::min(along - 0.75F, 1.75F - along), 2.1F - up);
        albedo =
            frame < 0.09F ? Colour{0.52F, 0.50F, 0.45F} : Boards(along * 1.2F, up, true) * Colour{0.35F, 0.75F, 0.95F};
    } else if (opening && face.kind != Kind::Roof) {
        const float left = face.kind == Kind::Gable ? along - 2.75F : std::fabs(along - 3.1F) - 0.55F;
        const float low = up - 1.15F;
        const float size = face.kind == Kind::Gable ? 1.0F : 0.9F;
        const float frame = std::min(std::min(left, size - left), std::min(low, size - low));
        const bool bar = std::fabs(left - size / 2) < 0.03F || std::fabs(low - size / 2) < 0.03F;
        albedo = frame < 0.07F || bar ? Colour{0.55F, 0.54F, 0.50F} : Colour{0.012F, 0.014F, 0.016F};
        gloss = frame < 0.07F || bar ? 0.0F : 0.10F + 0.10F * low;
    }
    float sun = std::max(0.0F, Dot(face.normal, SunDirection()));
    // The eaves throw a shadow on what stands below them.
    if (face.kind == Kind::Wall) sun *= Smooth(WallHeight - 0.25F, WallHeight - 0.42F, up);
    if (face.kind == Kind::Gable) {
        const float roof = WallHeight + RoofHeight * (1 - std::fabs(2 * hit.u - 1));
        sun *= Smooth(roof - 0.30F, roof - 0.48F, up);
    }
    return albedo * (SunLight * sun + SkyLight * (0.75F + 0.25F * face.normal.y)) + Colour{0.7F, 0.85F, 1.0F} * gloss;
}

void Hut::Paint(Frame& frame, View const& view, int begin, int end) const {
    const Box box = GetBox(view);
    const Point eye{0, view.eye, 0};
    const int bottom = std::min(end, box.y + box.height);
    for (int row = std::max(begin, box.y); row < bottom; ++row) {
        if (row >= frame.height) break;
        for (int column = std::max(0, box.x); column < std::min(frame.width, box.x + box.width); ++column) {
            Colour sum;
            int covered = 0;
            float nearest = 1e9F;
            // Four rays a pixel, so that edges are smooth.
            for (int sub = 0; sub < 4; ++sub) {
                const float x = static_cast<float>(column) + 0.5F * static_cast<float>(sub % 2) - 0.25F;
                const float y = static_cast<float>(row) + 0.5F * static_cast<float>(sub / 2) - 0.25F;
                const Point direction{view.SlopeX(x), view.SlopeY(y), 1};
                Face const* front = nullptr;
                Hit best;
                best.distance = frame.depth[frame.At(column, row)];
                for (Face const& face : m_faces) {
                    Hit hit;
                    if (Meets(face, eye, direction, hit) && hit.distance < best.distance) {
                        best = hit;
                        front = &face;
                    }
                }
                if (front == nullptr) continue;
                sum = sum + Shade(*front, best);
                nearest = std::min(nearest, best.distance);
                ++covered;
            }
            if (covered == 0) continue;
            const size_t pixel = frame.At(column, row);
            frame.colour[pixel] = (sum + frame.colour[pixel] * static_cast<float>(4 - covered)) * 0.25F;
            if (covered > 1) frame.depth[pixel] = nearest;
        }
    }
}

float Hut::GetCoverage(View const& view, float column, float row) const {
    int covered = 0;
    for (int sub = 0; sub < 4; ++sub) {
        const float x = column + 0.5F * static_cast<float>(sub % 2) - 0.25F;
        const float y = row + 0.5F * static_cast<float>(sub / 2) - 0.25F;
        Hit hit;
        for (Face const& face : m_faces) {
            if (!Meets(face, {0, view.eye, 0}, {view.SlopeX(x), view.SlopeY(y), 1}, hit)) continue;
            ++covered;
            break;
        }
    }
    return static_cast<float>(covered) / 4;
}

Box Hut::GetBox(View const& view) const {
    float left = 1e9F;
    float right = -1e9F;
    float top = 1e9F;
    float bottom = -1e9F;
    for (Face const& face : m_faces) {
        for (int corner = 0; corner < 4; ++corner) {
            const Point at =
                face.corner + face.along * static_cast<float>(corner % 2) + face.up * static_cast<float>(corner / 2);
            left = std::min(left, view.Column(at.x, at.z));
            right = std::max(right, view.Column(at.x, at.z));
            top = std::min(top, view.Row(at.y, at.z));
            bottom = std::max(bottom, view.Row(at.y, at.z));
        }
    }
    const float margin = 0.05F * (right - left);
    Box box;
    box.x = static_cast<int>(left - margin);
    box.y = static_cast<int>(top - margin);
    box.width = static_cast<int>(right - left + 2 * margin);
    box.height = static_cast<int>(bottom - top + 2 * margin);
    return box;
}

}  // namespace sample

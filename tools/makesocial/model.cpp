// SPDX-License-Identifier: Apache-2.0
// Records for platforms of which too few files could be measured. Each has all that an encoder decides from one
// measured file, or from a published profile, and a size of its own.
#include <algorithm>
#include <cmath>
#include <cstdint>
#include <iomanip>
#include <map>
#include <set>
#include <sstream>
#include <stdexcept>

#include "tools/makesocial/samples.h"

namespace makesocial {

namespace {

// Reproducible on every machine, unlike the distributions of the standard library (Steele, Lea, Flood: Fast splittable
// pseudorandom number generators, 2014).
class Random {
public:
    explicit Random(uint64_t seed) : m_state(seed) {}
    uint64_t Next() {
        uint64_t z = m_state += 0x9E3779B97F4A7C15u;
        z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9u;
        z = (z ^ (z >> 27)) * 0x94D049BB133111EBu;
        return z ^ (z >> 31);
    }
    int Below(int bound) { return static_cast<int>(Next() % static_cast<uint64_t>(bound)); }

private:
    uint64_t m_state;
};

// Shapes of pictures, longer to shorter side: those of cameras, telephones and squares.
constexpr std::pair<int, int> kShapes[] = {{4, 3}, {3, 2}, {16, 9}, {1, 1}, {5, 4}, {2, 1}, {37, 18}, {16, 10}, {7, 5}};
constexpr int kAttempts = 100000;

using Vector = std::pair<std::array<int, 8>, int>;

Vector VectorOf(Sample const& sample) {
    return {sample.Head(), sample.table};
}

using Models = std::map<Profile, std::vector<Sample const*>>;

// Has a file from no platform this table and sampling, and nearly as many markers?
bool IsNearOthers(Data const& data, Sample const& sample) {
    constexpr int kNearMarkers = 2;
    return std::any_of(data.others.begin(), data.others.end(), [&](Sample const& other) {
        return other.table == sample.table && other.sampling == sample.sampling &&
               std::abs(other.markers - sample.markers) <= kNearMarkers;
    });
}

// Measured files that may stand model, by profile: those whose profile no file from no platform comes near, so that
// such files gain no neighbours. Where too few profiles are left, all may.
Models FindModels(Data const& data, Group const& group) {
    constexpr size_t kFewest = 3;
    Models own;
    Models all;
    for (Sample const& sample : data.measured) {
        if (!IsUsable(data, group, sample)) continue;
        all[sample.GetProfile()].push_back(&sample);
        if (!IsNearOthers(data, sample)) own[sample.GetProfile()].push_back(&sample);
    }
    return own.size() < kFewest ? all : own;
}

// Shares `count` out among the profiles by the square roots of their numbers of files, largest remainders first.
std::vector<int> ShareOut(Models const& models, int count) {
    double total = 0;
    for (auto const& model : models) total += std::sqrt(static_cast<double>(model.second.size()));
    std::vector<int> shares;
    std::vector<std::pair<double, size_t>> remainders;
    int given = 0;
    for (auto const& model : models) {
        double const exact = count * std::sqrt(static_cast<double>(model.second.size())) / total;
        shares.push_back(static_cast<int>(exact));
        remainders.emplace_back(shares.back() - exact, remainders.size());
        given += shares.back();
    }
    std::sort(remainders.begin(), remainders.end());
    for (int i = 0; i < count - given; ++i) ++shares[remainders[static_cast<size_t>(i)].second];
    return shares;
}

class Modeller {
public:
    Modeller(Data const& data, Group const& group) : m_group(group), m_random(SeedOf(group.name)) {
        for (Sample const& sample : data.measured) m_taken.insert(VectorOf(sample));
        for (Sample const& sample : data.others) m_taken.insert(VectorOf(sample));
    }

    // A record with this model's profile and longer side `side`.
    void Add(Sample const& model, int side) {
        Sample record = model;
        record.group = m_group.name;
        record.isModelled = true;
        for (int attempt = 0; attempt < kAttempts; ++attempt) {
            auto const [longer, shorter] = Shape(attempt);
            int const other = std::max(1, static_cast<int>(std::lround(double(side) * shorter / longer)));
            bool const isUpright = m_random.Below(2) == 1;
            record.width = isUpright ? other : side;
            record.height = isUpright ? side : other;
            if (!m_taken.insert(VectorOf(record)).second) continue;
            record.file = Name(model);
            m_made.push_back(record);
            return;
        }
        throw std::runtime_error(m_group.name + ": no further size to model");
    }

    int Below(int bound) { return m_random.Below(bound); }
    std::vector<Sample> Take() { return std::move(m_made); }
    int Count() const { return static_cast<int>(m_made.size()); }

private:
    static uint64_t SeedOf(std::string const& name) {
        uint64_t seed = 20200229;
        for (char const c : name) seed = seed * 131 + static_cast<unsigned char>(c);
        return seed;
    }

    // First the usual shapes, a random one each time, later those of cut pictures.
    std::pair<int, int> Shape(int attempt) {
        constexpr int kUsual = 3 * static_cast<int>(std::size(kShapes));
        if (attempt < kUsual) return kShapes[m_random.Below(static_cast<int>(std::size(kShapes)))];
        return {1000 + m_random.Below(1000), 1000};
    }

    // Twelve zeros and a running number tell that no file has this name; then half of the model's.
    std::string Name(Sample const& model) const {
        std::ostringstream name;
        name << "000000000000" << std::hex << std::setw(4) << std::setfill('0') << m_made.size() + 1
             << (model.file.empty() ? "0000000000000000" : model.file.substr(0, 16));
        return name.str();
    }

    Group const& m_group;
    Random m_random;
    std::set<Vector> m_taken;
    std::vector<Sample> m_made;
};

bool HasSide(std::vector<Sample> const& samples, int side) {
    return std::any_of(samples.begin(), samples.end(), [&](Sample const& one) { return one.LongerSide() == side; });
}

// The file whose longer side is nearest to `side`.
Sample const& Nearest(Models const& models, int side) {
    Sample const* best = nullptr;
    for (auto const& model : models) {
        for (Sample const* sample : model.second) {
            if (best == nullptr || std::abs(sample->LongerSide() - side) < std::abs(best->LongerSide() - side)) {
                best = sample;
            }
        }
    }
    return *best;
}

}  // namespace

std::vector<Sample> Model(Data const& data, Group const& group, std::vector<Sample> const& chosen, int count) {
    Modeller modeller(data, group);
    if (count <= 0) return {};
    auto const models = FindModels(data, group);
    if (models.empty()) {
        for (Sample const& profile : data.published) {
            if (profile.group != group.name) continue;
            while (modeller.Count() < count) {
                modeller.Add(profile, modeller.Count() % 2 == 0 ? group.greatest : group.least);
            }
        }
        if (modeller.Count() < count) throw std::runtime_error(group.name + ": nothing to model on");
        return modeller.Take();
    }
    for (int const side : {group.least, group.greatest}) {
        if (!HasSide(chosen, side)) modeller.Add(Nearest(models, side), side);
    }
    std::vector<int> const shares = ShareOut(models, count - modeller.Count());
    size_t place = 0;
    for (auto const& [profile, samples] : models) {
        int const first = modeller.Below(static_cast<int>(samples.size()));
        for (int i = 0; i < shares[place]; ++i) {
            Sample const& model = *samples[static_cast<size_t>(first + i) % samples.size()];
            modeller.Add(model, model.LongerSide());
        }
        ++place;
    }
    return modeller.Take();
}

}  // namespace makesocial

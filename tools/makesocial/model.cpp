// SPDX-License-Identifier: Apache-2.0
// Records for platforms of which too few files could be measured. Each has all that an encoder decides from one
// measured file, or from a published profile, and a size of its own.
#include <algorithm>
#include <cmath>
#include <cstdint>
#include <iomanip>
#include <set>
#include <sstream>
#include <stdexcept>

#include "tools/makesocial/nearness.h"
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
    int Below(size_t bound) { return static_cast<int>(Next() % bound); }

private:
    uint64_t m_state;
};

// Shapes of pictures, longer to shorter side: those of cameras, telephones and squares.
constexpr std::pair<int, int> kShapes[] = {{4, 3}, {3, 2}, {16, 9}, {1, 1}, {5, 4}, {2, 1}, {37, 18}, {16, 10}, {7, 5}};
constexpr std::pair<int, int> kCuts[] = {{1, 1}, {5, 4}, {4, 3}, {3, 2}, {16, 9}, {2, 1}};

// What a record has to be, strictest first.
enum class Rule { FarFromNone, Sparing, NearestToOwn, NotForeign, Any };

constexpr Rule kRules[] = {Rule::FarFromNone, Rule::Sparing, Rule::NearestToOwn, Rule::NotForeign, Rule::Any};

bool IsAccepted(Near const& near, Rule rule) {
    if (rule == Rule::Any) return true;
    if (near.IsContested()) return false;
    if (rule == Rule::NotForeign) return true;
    if (rule == Rule::Sparing) return near.spared < kThreshold;
    return near.own >= near.none && (rule == Rule::NearestToOwn || near.none < kThreshold);
}

using Vector = std::pair<std::array<int, 8>, int>;

Vector VectorOf(Sample const& sample) {
    return {sample.Head(), sample.table};
}

void SetSize(Sample& sample, int longer, int shorter, bool isUpright) {
    sample.width = isUpright ? shorter : longer;
    sample.height = isUpright ? longer : shorter;
}

int Shorter(int side, std::pair<int, int> shape) {
    return std::max(1, static_cast<int>(std::lround(double(side) * shape.second / shape.first)));
}

}  // namespace

class Modeller::Maker {
public:
    Maker(Data const& data, Group const& group, Nearness& nearness)
        : m_data(data), m_group(group), m_nearness(nearness), m_random(SeedOf(group.name)) {
        for (Sample const& sample : data.measured) m_taken.insert(VectorOf(sample));
        for (Sample const& sample : data.others) m_taken.insert(VectorOf(sample));
        for (Sample const& sample : data.measured) {
            if (!IsUsable(data, group, sample)) continue;
            m_usable.push_back(&sample);
            m_sides.push_back(sample.LongerSide());
        }
        FindBeyond();
    }

    void AddBeyond(size_t count) {
        size_t const wanted = m_made.size() + count;
        for (bool hasAny = true; hasAny && m_made.size() < wanted;) {
            hasAny = false;
            for (Sample const* model : m_beyond) {
                if (m_made.size() < wanted && TryReduced(*model, Rule::FarFromNone)) hasAny = true;
            }
        }
    }

    void AddWithSide(int side) {
        Sample const* nearest = nullptr;
        for (Sample const* sample : m_usable) {
            if (nearest == nullptr || std::abs(sample->LongerSide() - side) < std::abs(nearest->LongerSide() - side)) {
                nearest = sample;
            }
        }
        if (nearest == nullptr) return;
        for (Rule const rule : kRules) {
            if (TryLyingAndUpright(*nearest, side, rule)) return;
        }
    }

    void Fill(size_t count) {
        size_t const wanted = m_made.size() + count;
        if (m_usable.empty()) FillFromPublished(wanted);
        std::vector<Sample const*> const inTurn = InTurn(m_usable);
        for (Rule const rule : kRules) {
            for (bool hasAny = true; hasAny && m_made.size() < wanted;) {
                hasAny = false;
                for (Sample const* model : m_beyond) {
                    if (m_made.size() < wanted && TryReduced(*model, rule)) hasAny = true;
                }
                for (Sample const* model : inTurn) {
                    if (m_exhausted.count({model, rule}) != 0 || m_made.size() >= wanted) continue;
                    if (TrySides(*model, rule)) {
                        hasAny = true;
                    } else {
                        m_exhausted.insert({model, rule});
                    }
                }
            }
        }
        if (m_made.size() < wanted) throw std::runtime_error(m_group.name + ": nothing to model on");
    }

    std::vector<Sample> const& GetRecords() const { return m_made; }

private:
    static constexpr int kAttempts = 1000;
    static constexpr int kAttemptsOnSides = 60;  // before a model counts as exhausted

    static uint64_t SeedOf(std::string const& name) {
        uint64_t seed = 20200229;
        for (char const c : name) seed = seed * 131 + static_cast<unsigned char>(c);
        return seed;
    }

    // One file of each collection, year and encoding that the collection has in no admitted size.
    void FindBeyond() {
        std::set<std::tuple<std::string, std::string, Profile>> known;
        for (Sample const* sample : m_usable) {
            known.insert({sample->collection, sample->date.substr(0, 4), sample->GetProfile()});
        }
        for (Sample const& sample : m_data.measured) {
            if (sample.group != m_group.name || m_group.Admits(sample) || !IsEncodingUsable(m_data, sample)) continue;
            if (!known.insert({sample.collection, sample.date.substr(0, 4), sample.GetProfile()}).second) continue;
            m_beyond.push_back(&sample);
        }
    }

    bool Try(Sample record, Sample const& model, Rule rule) {
        if (m_taken.count(VectorOf(record)) != 0 || !m_nearness.IsWithinScale(record)) return false;
        if (rule != Rule::Any && !IsAccepted(m_nearness.Of(record), rule)) return false;
        m_taken.insert(VectorOf(record));
        record.file = Name(model);
        m_made.push_back(std::move(record));
        return true;
    }

    Sample Copy(Sample const& model) const {
        Sample record = model;
        record.group = m_group.name;
        record.isModelled = true;
        return record;
    }

    // Its own shape at the nearest limit, then as cut to a usual shape, then turned.
    bool TryReduced(Sample const& model, Rule rule) {
        Sample record = Copy(model);
        int const side = model.LongerSide() > m_group.greatest ? m_group.greatest : m_group.least;
        bool const isUpright = model.height > model.width;
        int const own = Shorter(side, {model.LongerSide(), std::min(model.width, model.height)});
        for (bool const isTurned : {false, true}) {
            SetSize(record, side, own, isUpright != isTurned);
            if (Try(record, model, rule)) return true;
            for (auto const& cut : kCuts) {
                SetSize(record, side, Shorter(side, cut), isUpright != isTurned);
                if (Try(record, model, rule)) return true;
            }
        }
        return false;
    }

    // First the usual shapes, a random one each time, later those of cut pictures.
    bool TryOnce(Sample const& model, int side, int attempt, Rule rule) {
        constexpr int kUsual = 3 * static_cast<int>(std::size(kShapes));
        std::pair<int, int> shape;
        if (attempt < kUsual) {
            shape = kShapes[m_random.Below(std::size(kShapes))];
        } else {
            shape = {1000 + m_random.Below(1000), 1000};
        }
        Sample record = Copy(model);
        SetSize(record, side, Shorter(side, shape), m_random.Below(2) == 1);
        return Try(std::move(record), model, rule);
    }

    bool TryShaped(Sample const& model, int side, Rule rule) {
        for (int attempt = 0; attempt < kAttempts; ++attempt) {
            if (TryOnce(model, side, attempt, rule)) return true;
        }
        return false;
    }

    bool TryLyingAndUpright(Sample const& model, int side, Rule rule) {
        bool isMade = false;
        for (bool const isUpright : {false, true}) {
            for (auto const& shape : kShapes) {
                Sample record = Copy(model);
                SetSize(record, side, Shorter(side, shape), isUpright);
                if (!Try(std::move(record), model, rule)) continue;
                isMade = true;
                break;
            }
        }
        return isMade;
    }

    // The sides are those of the platform's measured pictures.
    bool TrySides(Sample const& model, Rule rule) {
        for (int attempt = 0; attempt < kAttemptsOnSides; ++attempt) {
            int const side = m_sides[static_cast<size_t>(m_random.Below(m_sides.size()))];
            if (TryOnce(model, side, attempt, rule)) return true;
        }
        return false;
    }

    void FillFromPublished(size_t wanted) {
        for (Sample const& profile : m_data.published) {
            if (profile.group != m_group.name) continue;
            for (bool hasAny = true; hasAny && m_made.size() < wanted;) {
                hasAny = TryShaped(profile, m_made.size() % 2 == 0 ? m_group.greatest : m_group.least, Rule::Any);
            }
        }
    }

    // Twelve zeros and a running number tell that no file has this name; then half of the model's.
    std::string Name(Sample const& model) const {
        std::ostringstream name;
        name << "000000000000" << std::hex << std::setw(4) << std::setfill('0') << m_made.size() + 1
             << (model.file.empty() ? "0000000000000000" : model.file.substr(0, 16));
        return name.str();
    }

    Data const& m_data;
    Group const& m_group;
    Nearness& m_nearness;
    Random m_random;
    std::vector<Sample const*> m_usable, m_beyond;
    std::vector<int> m_sides;
    std::set<std::pair<Sample const*, Rule>> m_exhausted;
    std::set<Vector> m_taken;
    std::vector<Sample> m_made;
};

Modeller::Modeller(Data const& data, Group const& group, Nearness& nearness)
    : m_maker(std::make_unique<Maker>(data, group, nearness)) {}
Modeller::~Modeller() = default;

void Modeller::AddBeyond(size_t count) {
    m_maker->AddBeyond(count);
}
void Modeller::AddWithSide(int side) {
    m_maker->AddWithSide(side);
}
void Modeller::Fill(size_t count) {
    m_maker->Fill(count);
}
std::vector<Sample> const& Modeller::GetRecords() const {
    return m_maker->GetRecords();
}

}  // namespace makesocial

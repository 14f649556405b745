#pragma once

namespace Tessary {

/// How far sampling is when its long phases end, by what they take of 20 million candidates.
constexpr float kDrawn = 0.5f;
constexpr float kScattered = 0.57f;
constexpr float kSorted = 0.7f;
constexpr float kLinked = 0.73f;
constexpr float kEliminated = 0.97f;
constexpr float kGathered = 1.0f;

}  // namespace Tessary

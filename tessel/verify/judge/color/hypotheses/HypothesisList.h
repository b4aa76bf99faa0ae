/// The list in the making, for the families of hypotheses.
#pragma once

#include "Hypothesis.h"

namespace tessel::verify::judge {

/// Gathers hypotheses about codes of one coding. Integer codes are clipped to what their samples hold.
class HypothesisList {
public:
    using Way = std::function<Triple(const ColorPair&)>;

    explicit HypothesisList(const Coding& coding) : mCoding(coding) {}

    /// What the codes should be.
    [[nodiscard]] const Coding& Expected() const noexcept { return mCoding; }

    /// @param toCodes  what comes back, in codes
    void AddCodes(std::vector<std::string_view> ids, std::string message, std::vector<std::string> found,
                  std::vector<std::string> expected, Way toCodes);

    /// @param toRgb  what comes back, in R'G'B' that is then coded rightly
    void AddColors(std::vector<std::string_view> ids, std::string message, std::vector<std::string> found,
                   std::vector<std::string> expected, Way toRgb);

    [[nodiscard]] std::vector<Hypothesis> Taken() && { return std::move(mList); }

private:
    Coding mCoding;
    std::vector<Hypothesis> mList;
};

/// One family each. @{
void AddMatricesAndRanges(HypothesisList& list);
void AddComponents(HypothesisList& list);
void AddTransfers(HypothesisList& list);
void AddAlpha(HypothesisList& list);
void AddChromaOfFields(HypothesisList& list);
/// @}

} // namespace tessel::verify::judge

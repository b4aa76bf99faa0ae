#include "TrackerSetup.h"

#include <algorithm>
#include <utility>

namespace tessel::verify::judge {
namespace {

int LengthFor(const std::vector<double>& frequencies)
{
    // 20 ms at 48 kHz; a fit with a constant wants more than a period of the lowest tone.
    double length = 960;
    for (const double cycles : frequencies) {
        length = std::max(length, 1.6 / cycles);
    }
    return static_cast<int>(std::min(length, 9600.0));
}

std::vector<HarmonicBank> BanksFor(const std::vector<double>& frequencies, int length)
{
    std::vector<HarmonicBank> banks;
    banks.reserve(frequencies.size());
    for (const double cycles : frequencies) {
        banks.emplace_back(cycles, length);
    }
    return banks;
}

} // namespace

TrackerSetup::TrackerSetup(std::vector<double> cyclesPerSample, double level)
    : frequencies(std::move(cyclesPerSample)), onLevel(level), bank(frequencies, LengthFor(frequencies)),
      harmonics(BanksFor(frequencies, bank.Length()))
{
}

} // namespace tessel::verify::judge

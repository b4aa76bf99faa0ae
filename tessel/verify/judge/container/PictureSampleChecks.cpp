#include "ContainerChecks.h"
#include "ContainerReport.h"

#include <fmt/format.h>

namespace tessel::verify::judge {
namespace {

using read::PictureFacts;

class PictureSampleChecks : public ContainerReport {
public:
    using ContainerReport::ContainerReport;

    void Run()
    {
        JudgeDepth(*mMovie.picture);
        JudgeAlpha(*mMovie.picture);
    }

private:
    void JudgeDepth(const PictureFacts& picture)
    {
        const int bits = picture.format.isFloat ? 16 : picture.format.bits;
        if (bits >= mClip.bits) {
            mFindings.AsExpected(id::kContainerDepth);
        } else if (bits >= mMovie.sayable.bits || mClip.bits == 16) {
            // A profile is made for a depth: the High one of H.264 has 8 bits, High 10 has 10.
            const std::string profile =
                picture.profile.empty() ? "" : fmt::format(" in its profile {}", picture.profile);
            Unsayable(id::kContainerDepth, fmt::format("carry more than {} bits{}", bits, profile),
                      mClip.bits == 16 ? "float samples" : fmt::format("{}", mClip.bits));
        } else {
            Fault(id::kContainerDepth, fmt::format("samples have {} bits, not {}", bits, mClip.bits),
                  static_cast<double>(mClip.bits), static_cast<double>(bits));
        }
    }

    void JudgeAlpha(const PictureFacts& picture)
    {
        if (!mClip.fileKind.HasAlpha()) {
            mFindings.NotVisible(id::kContainerAlpha);
        } else if (picture.format.hasAlpha) {
            mFindings.AsExpected(id::kContainerAlpha);
        } else if (!mMovie.sayable.alpha) {
            Unsayable(id::kContainerAlpha, "carry alpha", "alpha");
        } else {
            Fault(id::kContainerAlpha, "the clip's alpha is not in the movie", std::string("alpha"),
                  std::string("none"));
        }
    }
};

} // namespace

void JudgePictureSamples(const ContainerCase& given, Findings& findings)
{
    PictureSampleChecks(given, findings).Run();
}

} // namespace tessel::verify::judge

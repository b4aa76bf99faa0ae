#include <kestrel/qelaccelerate/VectorWidth.h>

#include <gtest/gtest.h>

#include <cstddef>
#include <vector>

namespace {

using namespace qelaccelerate;

TEST(VectorWidth, WidestIsOneThatTheMachineHas)
{
    EXPECT_TRUE(HasVectorWidth(WidestVectors()));
    EXPECT_TRUE(HasVectorWidth(VectorWidth::Baseline));
}

TEST(VectorWidth, NoAvailableWidthIsWiderThanTheWidest)
{
    for (const VectorWidth width : {VectorWidth::Avx2, VectorWidth::Avx512}) {
        if (HasVectorWidth(width)) {
            EXPECT_GE(WidestVectors(), width);
        }
    }
}

TEST(VectorWidth, WorkIsDoneOnceInEveryWidth)
{
    for (const VectorWidth width : {VectorWidth::Baseline, VectorWidth::Avx2, VectorWidth::Avx512}) {
        if (!HasVectorWidth(width)) {
            continue;
        }
        std::vector<float> values(1000, 1.0F);
        RunWithVectors(width, [out = values.data(), count = values.size()] {
            for (std::size_t k = 0; k < count; ++k) {
                out[k] += static_cast<float>(k);
            }
        });
        for (std::size_t k = 0; k < values.size(); ++k) {
            ASSERT_EQ(values[k], static_cast<float>(k + 1)) << "width " << static_cast<int>(width);
        }
    }
}

} // namespace

#include <tessel/damage/order/FrameOrder.h>

#include <gtest/gtest.h>

#include <array>

namespace tessel::damage {
namespace {

/// Frames in order, -1 for black.
std::vector<std::int64_t> FramesOf(const FrameOrder& order)
{
    std::vector<std::int64_t> frames;
    for (const OrderedPicture& picture : order.Pictures()) {
        frames.push_back(picture.kind == OrderedPicture::Kind::Black ? -1 : picture.frame);
    }
    return frames;
}

using Frames = std::vector<std::int64_t>;

TEST(FrameOrder, EachFaultDoesWhatItsNameSays)
{
    struct Row {
        void (*change)(FrameOrder& order);
        Frames frames;
    };
    const Row rows[] = {
        {[](FrameOrder& order) { order.Remove(2); }, {10, 11, 13, 14}},
        {[](FrameOrder& order) { order.Repeat(2, 2); }, {10, 11, 12, 12, 12, 13, 14}},
        {[](FrameOrder& order) { order.InsertBlack(2); }, {10, 11, -1, 12, 13, 14}},
        {[](FrameOrder& order) { order.SwapWithNext(2); }, {10, 11, 13, 12, 14}},
        {[](FrameOrder& order) { order.Freeze(1, 2); }, {10, 11, 11, 11, 14}},
        {[](FrameOrder& order) { order.Reverse(); }, {14, 13, 12, 11, 10}},
        {[](FrameOrder& order) {
             order.Pulldown(std::array{3, 2});
         },
         {10, 10, 10, 11, 11, 12, 12, 12, 13, 13, 14, 14, 14}},
        {[](FrameOrder& order) { order.CutHead(2); }, {12, 13, 14}},
        {[](FrameOrder& order) { order.CutTail(2); }, {10, 11, 12}},
        {[](FrameOrder& order) { order.SwapWithNext(4); }, {10, 11, 12, 13, 14}},
        {[](FrameOrder& order) { order.Remove(5); }, {10, 11, 12, 13, 14}},
    };
    for (const Row& row : rows) {
        FrameOrder order(10, 5);
        row.change(order);
        EXPECT_EQ(FramesOf(order), row.frames);
    }
}

TEST(FrameOrder, APictureIsAlwaysLeft)
{
    FrameOrder order(0, 3);
    order.CutHead(5);
    order.Remove(0);
    EXPECT_EQ(FramesOf(order), (Frames{2}));
}

} // namespace
} // namespace tessel::damage

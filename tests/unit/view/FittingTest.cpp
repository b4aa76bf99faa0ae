#include <tessel/view/model/FieldView.h>
#include <tessel/view/model/Fitting.h>

#include <gtest/gtest.h>

namespace tessel::view {
namespace {

constexpr Area kWindow{0, 0, 1000, 800};

TEST(Fitting, KeepsThePicturesTrueShape)
{
    // 720 × 16/11 = 1047.3 wide beside 576: as wide as the window, 550 high.
    const Area place = PlaceOf({720, 576, {16, 11}}, kWindow, {});
    EXPECT_EQ(place.width, 1000);
    EXPECT_EQ(place.height, 550);
    EXPECT_EQ(place.left, 0);
    EXPECT_EQ(place.top, 125);
    // Upright: as high as the window.
    EXPECT_EQ(PlaceOf({1080, 1920, {1, 1}}, kWindow, {}).height, 800);
    EXPECT_EQ(PlaceOf({1080, 1920, {1, 1}}, kWindow, {}).width, 450);
}

TEST(Fitting, CodePixelsAreSquareAndWholeWhateverTheirAspect)
{
    const Area place = PlaceOf({720, 576, {16, 11}}, kWindow, {.pixelScale = 3, .panX = 10, .panY = -5});
    EXPECT_EQ(place.width, 2160);
    EXPECT_EQ(place.height, 1728);
    EXPECT_EQ(place.left, -570); // (1000 - 2160) / 2 + 10
    EXPECT_EQ(place.top, -469);  // (800 - 1728) / 2 - 5
}

TEST(Fitting, FindsThePixelUnderThePointer)
{
    const PictureSize size{100, 50, {1, 1}};
    const Area place = PlaceOf(size, kWindow, {}); // ten screen pixels each, 150 from the top
    EXPECT_EQ(PixelAt(size, place, 0, 150), (PixelPlace{0, 0}));
    EXPECT_EQ(PixelAt(size, place, 19.9, 165), (PixelPlace{1, 1}));
    EXPECT_EQ(PixelAt(size, place, 999.9, 649.9), (PixelPlace{99, 49}));
    EXPECT_FALSE(PixelAt(size, place, 500, 149.9).has_value());
    EXPECT_FALSE(PixelAt(size, place, 1000, 400).has_value());
}

TEST(FieldView, ShowsTheRowsOfOneField)
{
    EXPECT_EQ(RowsOf(FieldView::Woven, FirstField::Upper, true, 576), (Rows{0, 1, 576}));
    EXPECT_EQ(RowsOf(FieldView::Upper, FirstField::Lower, true, 576), (Rows{0, 2, 288}));
    EXPECT_EQ(RowsOf(FieldView::Lower, FirstField::Upper, false, 576), (Rows{1, 2, 288}));
}

TEST(FieldView, BobShowsTheFieldsInTheClipsOrder)
{
    EXPECT_EQ(RowsOf(FieldView::Bob, FirstField::Upper, false, 576).first, 0);
    EXPECT_EQ(RowsOf(FieldView::Bob, FirstField::Upper, true, 576).first, 1);
    EXPECT_EQ(RowsOf(FieldView::Bob, FirstField::Lower, false, 576).first, 1);
    EXPECT_EQ(RowsOf(FieldView::Bob, FirstField::Lower, true, 576).first, 0);
}

TEST(FieldView, OddHeightsHaveOneUpperRowMore)
{
    EXPECT_EQ(RowsOf(FieldView::Upper, FirstField::Upper, false, 5), (Rows{0, 2, 3}));
    EXPECT_EQ(RowsOf(FieldView::Lower, FirstField::Upper, false, 5), (Rows{1, 2, 2}));
    EXPECT_EQ(RowsOf(FieldView::Lower, FirstField::Upper, false, 1), (Rows{0, 1, 1}));
}

} // namespace
} // namespace tessel::view

#include "TesselDocument.h"

#include "ColorSpaceDocument.h"
#include "DocumentFields.h"
#include "SwatchFiles.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

namespace ImporterTessel {

using namespace qelcore::serialization;
using qelmediatypes::FrameRate;
using qelmediatypes::PixelAspectRatio;
using qelmediatypes::TickTime;
using qelmediatypes::color::ColorSpace;

namespace {

// Fields to document values and back, by the field's type; DocumentFields has the plain types. @{

void ReadField(const Value& value, std::string_view key, FloatColor& color)
{
    const ObjectReader reader(value, key, "FloatColor");
    FloatColor read;
    reader.Read("mAlphaPart", read.mAlphaPart);
    reader.Read("mRedPart", read.mRedPart);
    reader.Read("mGreenPart", read.mGreenPart);
    reader.Read("mBluePart", read.mBluePart);
    color = read;
}

void ReadField(const Value& value, std::string_view key, PixelAspectRatio& ratio)
{
    const ObjectReader reader(value, key, "PixelAspectRatio");
    std::uint32_t numerator = 0;
    std::uint32_t denominator = 0;
    reader.Read("numerator", numerator);
    reader.Read("denominator", denominator);
    ratio = {numerator, denominator};
}

void ReadField(const Value& value, std::string_view key, TickTime& time)
{
    std::int64_t ticks = 0;
    ObjectReader(value, key, "TickTime").Read("ticks", ticks);
    time = TickTime(ticks);
}

void ReadField(const Value& value, std::string_view key, FrameRate& rate)
{
    std::int64_t ticksPerFrame = 0;
    ObjectReader(value, key, "FrameRate").Read("ticksperframe", ticksPerFrame);
    // Intended: a rate of zero is no rate, and is the unusable one from here on, in files written later, too.
    rate = {ticksPerFrame == 0 ? FrameRate::kUnusableTicks : ticksPerFrame};
}

void ReadField(const Value& value, std::string_view key, ColorSpace& space)
{
    space = ColorSpaceFromValue(value, key);
}

void ReadField(const Value& value, std::string_view key, SwatchCoordinates& coordinates)
{
    coordinates = SwatchCoordinatesFromValue(value, key);
}

void ReadField(const Value& value, std::string_view key, SwatchColors& colors)
{
    colors = SwatchColorsFromValue(value, key);
}

template <class Field>
void ReadField(const Value& value, std::string_view key, Field& field)
{
    FieldFromValue(value, key, field);
}

Value ValueOfTicks(std::string key, std::int64_t ticks)
{
    Object object;
    AddToObject(object, std::move(key), SignedValue(ticks));
    return Value(std::move(object));
}

Value ValueOf(const FloatColor& color)
{
    Object object;
    AddToObject(object, "mAlphaPart", NumberValue(color.mAlphaPart));
    AddToObject(object, "mRedPart", NumberValue(color.mRedPart));
    AddToObject(object, "mGreenPart", NumberValue(color.mGreenPart));
    AddToObject(object, "mBluePart", NumberValue(color.mBluePart));
    return Value(std::move(object));
}

Value ValueOf(const PixelAspectRatio& ratio)
{
    Object object;
    AddToObject(object, "numerator", IntegerValue(ratio.GetNumerator()));
    AddToObject(object, "denominator", IntegerValue(ratio.GetDenominator()));
    return Value(std::move(object));
}

Value ValueOf(TickTime time)
{
    return ValueOfTicks("ticks", time.Ticks());
}
Value ValueOf(FrameRate rate)
{
    return ValueOfTicks("ticksperframe", rate.ticksPerFrame);
}
Value ValueOf(const ColorSpace& space)
{
    return ValueFromColorSpace(space);
}
Value ValueOf(const SwatchCoordinates& coordinates)
{
    return ValueFromSwatchCoordinates(coordinates);
}
Value ValueOf(const SwatchColors& colors)
{
    return ValueFromSwatchColors(colors);
}
Value ValueOf(const std::u16string& text)
{
    return TextValue(text);
}
Value ValueOf(std::int32_t integer)
{
    return IntegerValue(integer);
}
Value ValueOf(std::uint32_t integer)
{
    return IntegerValue(integer);
}
Value ValueOf(float number)
{
    return NumberValue(number);
}
Value ValueOf(bool boolean)
{
    return BooleanValue(boolean);
}

/// @}

/// One field of the record in a document.
struct DocumentField {
    FieldPresence presence;
    int place; ///< in the order of reading
    const char* key;
    void (*read)(const Value& value, std::string_view key, TesselInfo& info);
    Value (*valueOf)(const TesselInfo& info);
};

/// The fields that documents have, in the order of reading.
constexpr auto MakeDocumentFields()
{
#define TESSEL_ROW(type, name, initial, presence, place)                                                       \
    DocumentField{                                                                                             \
        FieldPresence::presence, place, #name,                                                                 \
        [](const Value& value, std::string_view key, TesselInfo& info) { ReadField(value, key, info.name); },  \
        [](const TesselInfo& info) { return ValueOf(info.name); }},
    std::array fields{TESSEL_INFO_FIELDS(TESSEL_ROW)};
#undef TESSEL_ROW
    std::sort(fields.begin(), fields.end(),
              [](const DocumentField& a, const DocumentField& b) { return a.place < b.place; });
    return fields;
}

constexpr auto kFields = MakeDocumentFields();

} // namespace

Value DocumentFromTessel(const TesselInfo& info)
{
    Object root;
    for (const DocumentField& field : kFields) {
        if (field.presence != FieldPresence::NotInDocument) {
            AddToObject(root, field.key, field.valueOf(info));
        }
    }
    return Value(std::move(root));
}

TesselInfo TesselFromDocument(const Value& document)
{
    TesselInfo info;
    if (!document.IsObject()) {
        return info;
    }
    info.mVersion = 0; // Intended: documents older than the key are version 0, whatever a new record has.
    const ObjectReader reader(document, /*path=*/"", "TesselInfo");
    for (const DocumentField& field : kFields) {
        const auto read = [&](const Value& value, std::string_view key) { field.read(value, key, info); };
        if (field.presence == FieldPresence::Required) {
            reader.Visit(field.key, read);
        } else if (field.presence == FieldPresence::Optional) {
            reader.VisitIfPresent(field.key, read);
        }
    }
    return info;
}

} // namespace ImporterTessel

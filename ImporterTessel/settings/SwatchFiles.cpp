#include "SwatchFiles.h"

#include "DocumentFields.h"
#include "DocumentText.h"

#include <string>
#include <utility>

namespace ImporterTessel {

using namespace qelcore::serialization;

namespace {

Coordinates CoordinatesFromValue(const Value& value, std::string_view key)
{
    const ObjectReader reader(value, key, "Coordinates");
    Coordinates coordinates;
    reader.Read("xCoordinates", coordinates.xCoordinates);
    reader.Read("yCoordinates", coordinates.yCoordinates);
    return coordinates;
}

Value ValueFromCoordinates(const Coordinates& coordinates)
{
    Object object;
    AddToObject(object, "xCoordinates", ListValue(coordinates.xCoordinates));
    AddToObject(object, "yCoordinates", ListValue(coordinates.yCoordinates));
    return Value(std::move(object));
}

/// Reads a file into `record` by `recordFromValue`, all or nothing.
template <class Record, class Reader>
ORB::Status ReadSwatchFile(std::u16string_view path, Record& record, const Reader& recordFromValue)
{
    std::string text;
    const ORB::Status opened = ReadDocumentText(path, text);
    if (opened >= 0) {
        record = recordFromValue(ParseDocument(text).document, /*key=*/"");
    }
    return opened;
}

} // namespace

SwatchCoordinates SwatchCoordinatesFromValue(const Value& value, std::string_view key)
{
    const ObjectReader reader(value, key, "SwatchCoordinates");
    SwatchCoordinates coordinates;
    reader.Read("colorSwatches", coordinates.colorSwatches, CoordinatesFromValue);
    reader.Read("legalRangeGradient", coordinates.legalRangeGradient, CoordinatesFromValue);
    reader.Read("fullRangeGradient", coordinates.fullRangeGradient, CoordinatesFromValue);
    return coordinates;
}

SwatchColors SwatchColorsFromValue(const Value& value, std::string_view key)
{
    const ObjectReader reader(value, key, "SwatchColors");
    SwatchColors colors;
    reader.Read("colorSwatches", colors.colorSwatches);
    reader.Read("legalRangeGradient", colors.legalRangeGradient);
    reader.Read("fullRangeGradient", colors.fullRangeGradient);
    return colors;
}

Value ValueFromSwatchCoordinates(const SwatchCoordinates& coordinates)
{
    Object object;
    AddToObject(object, "colorSwatches", ValueFromCoordinates(coordinates.colorSwatches));
    AddToObject(object, "legalRangeGradient", ValueFromCoordinates(coordinates.legalRangeGradient));
    AddToObject(object, "fullRangeGradient", ValueFromCoordinates(coordinates.fullRangeGradient));
    return Value(std::move(object));
}

Value ValueFromSwatchColors(const SwatchColors& colors)
{
    Object object;
    AddToObject(object, "colorSwatches", ListValue(colors.colorSwatches));
    AddToObject(object, "legalRangeGradient", ListValue(colors.legalRangeGradient));
    AddToObject(object, "fullRangeGradient", ListValue(colors.fullRangeGradient));
    return Value(std::move(object));
}

ORB::Status ReadSwatchCoordinatesFile(std::u16string_view path, SwatchCoordinates& coordinates)
{
    return ReadSwatchFile(path, coordinates, SwatchCoordinatesFromValue);
}

ORB::Status ReadSwatchColorsFile(std::u16string_view path, SwatchColors& colors)
{
    return ReadSwatchFile(path, colors, SwatchColorsFromValue);
}

} // namespace ImporterTessel

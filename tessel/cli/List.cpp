/// `tessel list`: what there is to choose from.

#include "CommandLine.h"
#include "Commands.h"

#include <kestrel/brindle/PixelFormat.h>
#include <kestrel/qelcore/serialization/Json.h>
#include <kestrel/qelcore/text/FourCharacterText.h>
#include <kestrel/qelmediatypes/PixelAspectRatio.h>
#include <tessel/document/settings/ColorSpaceNames.h>
#include <tessel/document/settings/FrameRates.h>
#include <tessel/document/settings/Idents.h>
#include <tessel/document/settings/PixelLayouts.h>
#include <tessel/document/settings/Templates.h>
#include <tessel/export/plan/AudioCodec.h>
#include <tessel/export/plan/Container.h>
#include <tessel/export/plan/VideoCodec.h>
#include <tessel/typed/Names.h>

#include <fmt/format.h>

#include <algorithm>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace tessel::cli {
namespace {

using qelcore::serialization::AddToObject;
using qelcore::serialization::Array;
using qelcore::serialization::Object;
using qelcore::serialization::Value;

/// Rows with the same keys, to be printed as columns or as JSON.
class Listing {
public:
    explicit Listing(std::vector<std::string> keys) : mKeys(std::move(keys)) {}

    void Add(std::vector<Value> row) { mRows.push_back(std::move(row)); }

    [[nodiscard]] std::string AsText() const
    {
        std::vector<std::vector<std::string>> rows{mKeys};
        for (const auto& row : mRows) {
            std::vector<std::string>& cells = rows.emplace_back();
            std::transform(row.begin(), row.end(), std::back_inserter(cells), Cell);
        }
        std::string text;
        for (const auto& row : rows) {
            std::string line;
            for (std::size_t column = 0; column < row.size(); ++column) {
                line += fmt::format("{:<{}}", row[column], Width(rows, column) + 2);
            }
            text += line.substr(0, line.find_last_not_of(' ') + 1) + '\n';
        }
        return text;
    }

    [[nodiscard]] std::string AsJson() const
    {
        Array list;
        for (const auto& row : mRows) {
            Object object;
            for (std::size_t column = 0; column < row.size(); ++column) {
                AddToObject(object, mKeys[column], row[column]);
            }
            list.emplace_back(std::move(object));
        }
        return qelcore::serialization::GetJSONUTF8String(Value(std::move(list)), /*formatted=*/true) + '\n';
    }

private:
    static std::string Cell(const Value& value)
    {
        if (value.IsArray()) {
            std::string cell;
            for (const Value& part : qelcore::serialization::Elements(value)) {
                cell += (cell.empty() ? "" : ", ") + Cell(part);
            }
            return cell;
        }
        if (const auto text = qelcore::serialization::FindText(value)) {
            return std::string(*text);
        }
        if (value.GetKind() == Value::Kind::Boolean) {
            return qelcore::serialization::AsBoolean(value, "") ? "yes" : "no";
        }
        return qelcore::serialization::GetJSONUTF8String(value, /*formatted=*/false);
    }

    static std::size_t Width(const std::vector<std::vector<std::string>>& rows, std::size_t column)
    {
        std::size_t width = 0;
        for (const auto& row : rows) {
            width = std::max(width, row[column].size());
        }
        return width;
    }

    std::vector<std::string> mKeys;
    std::vector<std::vector<Value>> mRows;
};

Value Integer(std::int64_t number)
{
    return Value(number);
}

/// The names of the rows that `which` accepts.
template <class Rows, class Which>
Value Names(const Rows& rows, const Which& which)
{
    Array names;
    for (const auto& row : rows) {
        if (which(row)) {
            names.push_back(Value(row.name));
        }
    }
    return Value(std::move(names));
}

std::string_view MatrixName(document::PixelMatrix matrix)
{
    switch (matrix) {
    case document::PixelMatrix::Bt601:
        return "601";
    case document::PixelMatrix::Bt709:
        return "709";
    case document::PixelMatrix::None:
        break;
    }
    return "-";
}

Listing PixelFormats()
{
    Listing listing({"layout", "matrix", "fourCharacterCode", "code", "name"});
    const auto layouts = document::AllPixelLayouts();
    for (const BR::PixelFormatInfo& info : BR::AllPixelFormats()) {
        const auto layout =
            std::find_if(layouts.begin(), layouts.end(), [&info](const document::PixelLayout& row) {
                return std::find(row.formats.begin(), row.formats.end(), info.constant) != row.formats.end();
            });
        listing.Add({Value(layout->name), Value(MatrixName(document::MatrixOf(info.format))),
                     Value(qelcore::text::TextOfFourBytes(info.sdkCode)), Integer(info.sdkCode),
                     Value(info.constant)});
    }
    return listing;
}

Listing FrameRates()
{
    Listing listing({"name", "numerator", "denominator", "ticksPerFrame"});
    for (const document::NamedFrameRate& rate : document::NamedFrameRates()) {
        listing.Add({Value(rate.name), Integer(rate.numerator), Integer(rate.denominator),
                     Integer(document::TicksPerFrame(rate.numerator, rate.denominator))});
    }
    return listing;
}

Listing PixelAspects()
{
    Listing listing({"name", "numerator", "denominator"});
    for (const auto& named : qelmediatypes::kNamedPixelAspectRatios) {
        listing.Add({Value(typed::PixelAspectName(named.ratio)), Integer(named.ratio.GetNumerator()),
                     Integer(named.ratio.GetDenominator())});
    }
    return listing;
}

Listing ColorSpaces()
{
    Listing listing({"name", "title", "primaries", "transfer", "matrix", "fullRange"});
    for (const document::NamedColorSpace& space : document::AllColorSpaces()) {
        listing.Add({Value(space.name), Value(space.title), Integer(space.primaries), Integer(space.transfer),
                     Integer(space.matrix), Value(space.isFullRange)});
    }
    return listing;
}

Listing Idents()
{
    Listing listing({"name", "title", "channels", "mIdentifierFormat"});
    for (const document::Ident& ident : document::AllIdents()) {
        listing.Add(
            {Value(ident.name), Value(ident.title), Integer(ident.channelCount), Integer(ident.format)});
    }
    return listing;
}

Listing Templates()
{
    Listing listing({"name", "summary", "settings"});
    for (const document::Template& row : document::AllTemplates()) {
        listing.Add({Value(row.name), Value(row.summary), Value(row.settings)});
    }
    return listing;
}

std::string_view KindName(exporting::ContainerKind kind)
{
    switch (kind) {
    case exporting::ContainerKind::Movie:
        return "movie";
    case exporting::ContainerKind::PictureOnly:
        return "picture stream";
    case exporting::ContainerKind::SoundOnly:
        return "sound";
    case exporting::ContainerKind::Sequence:
        break;
    }
    return "pictures";
}

Listing Containers()
{
    Listing listing({"name", "kind", "videoCodecs", "audioCodecs"});
    for (const exporting::Container& container : exporting::AllContainers()) {
        listing.Add({Value(container.name),
                     Value(container.takesEveryCodec ? "nothing" : KindName(container.kind)),
                     Names(exporting::AllVideoCodecs(),
                           [&container](const exporting::VideoCodec& codec) {
                               return container.TakesVideo() && codec.GoesInto(container);
                           }),
                     Names(exporting::AllAudioCodecs(), [&container](const exporting::AudioCodec& codec) {
                         return container.TakesAudio() && codec.GoesInto(container);
                     })});
    }
    return listing;
}

template <class Codec>
Value ContainersOf(const Codec& codec)
{
    return Names(exporting::AllContainers(), [&codec](const exporting::Container& container) {
        return !container.takesEveryCodec && codec.GoesInto(container);
    });
}

Listing Codecs()
{
    Listing listing({"name", "kind", "title", "containers", "quality"});
    for (const exporting::VideoCodec& codec : exporting::AllVideoCodecs()) {
        const auto& quality = codec.quality;
        listing.Add({Value(codec.name), Value("picture"), Value(codec.title), ContainersOf(codec),
                     Value(quality.name.empty() ? std::string("-")
                                                : fmt::format("{} {} to {}, usually {}", quality.name,
                                                              quality.best, quality.worst, quality.usual))});
    }
    for (const exporting::AudioCodec& codec : exporting::AllAudioCodecs()) {
        listing.Add({Value(codec.name), Value("sound"), Value(codec.encoder), ContainersOf(codec), Value("-")});
    }
    return listing;
}

struct Subject {
    std::string_view name;
    Listing (*make)();
};

constexpr Subject kSubjects[] = {
    {"pixel-formats", PixelFormats}, {"frame-rates", FrameRates}, {"pixel-aspects", PixelAspects},
    {"color-spaces", ColorSpaces},   {"idents", Idents},          {"templates", Templates},
    {"containers", Containers},      {"codecs", Codecs}};

struct ListOptions {
    std::string subject;
    bool json = false;
};

void RunList(const ListOptions& options)
{
    for (const Subject& subject : kSubjects) {
        if (subject.name == options.subject) {
            const Listing listing = subject.make();
            WriteOut(options.json ? listing.AsJson() : listing.AsText());
        }
    }
}

} // namespace

void AddListCommand(CommandLine& commandLine)
{
    const auto options = std::make_shared<ListOptions>();
    const Command command = commandLine.AddCommand("list", "List what there is to choose from");
    std::vector<std::string> names;
    for (const Subject& subject : kSubjects) {
        names.emplace_back(subject.name);
    }
    command.AddChoice("SUBJECT", options->subject, names, "What to list").Required();
    command.AddFlag("--json", options->json, "Print JSON: an array with an object for each row");
    command.AddExample("tessel list pixel-formats", "Layouts, their matrices, and the host's names and codes");
    command.AddExample("tessel list templates --json", "What tessel new can begin with, for scripts");
    command.OnRun([options] { RunList(*options); });
}

} // namespace tessel::cli

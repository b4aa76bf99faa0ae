#include "Writers.h"

#include <kestrel/qelcore/serialization/Json.h>

#include <memory>
#include <utility>

namespace tessel::verify {
namespace {

using qelcore::serialization::AddToObject;
using qelcore::serialization::Array;
using qelcore::serialization::Object;
using qelcore::serialization::Value;

Value Text(std::string_view text)
{
    return Value(std::string(text));
}

template <class Items, class Convert>
Value List(const Items& items, const Convert& convert)
{
    Array array;
    for (const auto& item : items) {
        array.push_back(convert(item));
    }
    return Value(std::move(array));
}

Value ValueOf(const Quantity& quantity)
{
    if (const double* number = std::get_if<double>(&quantity)) {
        return Value(*number);
    }
    if (const std::string* text = std::get_if<std::string>(&quantity)) {
        return Text(*text);
    }
    return Value();
}

Value SpansAsValue(const std::vector<Span>& spans)
{
    return List(spans, [](const Span& span) {
        Object object;
        AddToObject(object, "first", Value(span.first));
        AddToObject(object, "last", Value(span.last));
        return Value(std::move(object));
    });
}

Value ValueOf(const Finding& finding)
{
    Object object;
    AddToObject(object, "id", Text(finding.id));
    AddToObject(object, "verdict", Text(NameOf(finding.verdict)));
    AddToObject(object, "severity", Text(NameOf(finding.severity)));
    AddToObject(object, "message", Text(finding.message));
    AddToObject(object, "expected", ValueOf(finding.expected));
    AddToObject(object, "found", ValueOf(finding.found));
    AddToObject(object, "uncertainty", finding.uncertainty ? Value(*finding.uncertainty) : Value());
    AddToObject(object, "unit", Text(finding.unit));
    if (!finding.frames.empty()) {
        AddToObject(object, "frames", SpansAsValue(finding.frames));
    }
    if (!finding.samples.empty()) {
        AddToObject(object, "samples", SpansAsValue(finding.samples));
    }
    AddToObject(object, "consequences",
                List(finding.consequences, [](const Finding& inner) { return ValueOf(inner); }));
    return Value(std::move(object));
}

Value ValueOf(const AlignmentReport& alignment)
{
    Object object;
    AddToObject(object, "method", Text(NameOf(alignment.method)));
    AddToObject(object, "pictures", Value(alignment.pictures));
    AddToObject(object, "frames", Value(alignment.frames));
    AddToObject(object, "matched", Value(alignment.matched));
    AddToObject(object, "confidence", Value(alignment.confidence));
    AddToObject(object, "steps", List(alignment.steps, [](const EditStep& step) {
                    Object row;
                    AddToObject(row, "kind", Text(step.kind));
                    AddToObject(row, "picture", Value(step.picture));
                    AddToObject(row, "pictures", Value(step.pictures));
                    AddToObject(row, "frame", Value(step.frame));
                    AddToObject(row, "frames", Value(step.frames));
                    return Value(std::move(row));
                }));
    return Value(std::move(object));
}

constexpr std::string_view kSchema = R"json({
  "$schema": "https://json-schema.org/draft/2020-12/schema",
  "title": "What tessel verify found",
  "type": "object",
  "required": ["version", "clip", "movie", "verdict", "alignment", "findings", "asExpected", "notVisible",
               "notChecked", "notes"],
  "additionalProperties": false,
  "properties": {
    "version": {"const": 1},
    "clip": {"type": "string"},
    "movie": {"type": "string"},
    "verdict": {"enum": ["as expected", "not as expected", "undecided"]},
    "alignment": {
      "type": "object",
      "required": ["method", "pictures", "frames", "matched", "confidence", "steps"],
      "additionalProperties": false,
      "properties": {
        "method": {"enum": ["number", "color", "time", "none"]},
        "pictures": {"type": "integer", "minimum": 0},
        "frames": {"type": "integer", "minimum": 0},
        "matched": {"type": "integer", "minimum": 0},
        "confidence": {"type": "number", "minimum": 0, "maximum": 1},
        "steps": {
          "description": "The edit script: from the clip's frames to the movie's pictures, in the movie's order.",
          "type": "array",
          "items": {
            "type": "object",
            "required": ["kind", "picture", "pictures", "frame", "frames"],
            "additionalProperties": false,
            "properties": {
              "kind": {"description": "shown, or the id of the order check", "type": "string"},
              "picture": {"type": "integer", "minimum": 0},
              "pictures": {"type": "integer", "minimum": 0},
              "frame": {"description": "-1 where none can be told", "type": "integer", "minimum": -1},
              "frames": {"type": "integer", "minimum": 0}
            }
          }
        }
      }
    },
    "findings": {"type": "array", "items": {"$ref": "#/$defs/finding"}},
    "asExpected": {"type": "array", "items": {"$ref": "#/$defs/id"}},
    "notVisible": {
      "type": "array",
      "items": {
        "type": "object",
        "required": ["id", "use"],
        "additionalProperties": false,
        "properties": {"id": {"$ref": "#/$defs/id"}, "use": {"type": "string", "minLength": 1}}
      }
    },
    "notChecked": {"type": "array", "items": {"$ref": "#/$defs/id"}},
    "notes": {"type": "array", "items": {"type": "string"}}
  },
  "$defs": {
    "id": {"type": "string", "pattern": "^[a-z]+\\.[a-z-]+$"},
    "spans": {
      "type": "array",
      "items": {
        "type": "object",
        "required": ["first", "last"],
        "additionalProperties": false,
        "properties": {"first": {"type": "integer"}, "last": {"type": "integer"}}
      }
    },
    "finding": {
      "type": "object",
      "required": ["id", "verdict", "severity", "message", "expected", "found", "uncertainty", "unit",
                   "consequences"],
      "additionalProperties": false,
      "properties": {
        "id": {"$ref": "#/$defs/id"},
        "verdict": {"enum": ["not as expected", "undecided"]},
        "severity": {"enum": ["minor", "major", "critical"]},
        "message": {"type": "string", "minLength": 1},
        "expected": {"type": ["number", "string", "null"]},
        "found": {"type": ["number", "string", "null"]},
        "uncertainty": {"type": ["number", "null"], "minimum": 0},
        "unit": {"type": "string"},
        "frames": {"$ref": "#/$defs/spans"},
        "samples": {"$ref": "#/$defs/spans"},
        "consequences": {"type": "array", "items": {"$ref": "#/$defs/finding"}}
      }
    }
  }
}
)json";

} // namespace

std::string ReportAsJson(const Report& report)
{
    const auto text = [](const std::string& line) { return Text(line); };
    Object root;
    AddToObject(root, "version", Value(std::int64_t{Report::kVersion}));
    AddToObject(root, "clip", Text(report.clip));
    AddToObject(root, "movie", Text(report.movie));
    AddToObject(root, "verdict", Text(NameOf(report.verdict)));
    AddToObject(root, "alignment", ValueOf(report.alignment));
    AddToObject(root, "findings",
                List(report.findings, [](const Finding& finding) { return ValueOf(finding); }));
    AddToObject(root, "asExpected", List(report.asExpected, text));
    AddToObject(root, "notVisible", List(report.notVisible, [](const NotVisible& check) {
                    Object row;
                    AddToObject(row, "id", Text(check.id));
                    AddToObject(row, "use", Text(check.use));
                    return Value(std::move(row));
                }));
    AddToObject(root, "notChecked", List(report.notChecked, text));
    AddToObject(root, "notes", List(report.notes, text));
    return qelcore::serialization::GetJSONUTF8String(Value(std::move(root)), /*formatted=*/true) + "\n";
}

std::string ReportSchema()
{
    return std::string(kSchema);
}

} // namespace tessel::verify

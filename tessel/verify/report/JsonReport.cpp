#include "Writers.h"

#include <kestrel/qelcore/serialization/Json.h>

#include <memory>
#include <utility>

namespace tessel::verify {
namespace {

using qelcore::serialization::AddToObject;
using qelcore::serialization::ArrayOf;
using qelcore::serialization::Object;
using qelcore::serialization::Value;

Value ValueOf(const Quantity& quantity)
{
    if (const double* number = std::get_if<double>(&quantity)) {
        return Value(*number);
    }
    if (const std::string* text = std::get_if<std::string>(&quantity)) {
        return Value(*text);
    }
    return {};
}

Value SpansAsValue(const std::vector<Span>& spans)
{
    return ArrayOf(spans, [](const Span& span) {
        Object object;
        AddToObject(object, "first", Value(span.first));
        AddToObject(object, "last", Value(span.last));
        return Value(std::move(object));
    });
}

Value ValueOf(const Finding& finding)
{
    Object object;
    AddToObject(object, "id", Value(finding.id));
    AddToObject(object, "verdict", Value(NameOf(finding.verdict)));
    AddToObject(object, "severity", Value(NameOf(finding.severity)));
    AddToObject(object, "message", Value(finding.message));
    AddToObject(object, "expected", ValueOf(finding.expected));
    AddToObject(object, "found", ValueOf(finding.found));
    AddToObject(object, "uncertainty", finding.uncertainty ? Value(*finding.uncertainty) : Value());
    AddToObject(object, "unit", Value(finding.unit));
    if (!finding.frames.empty()) {
        AddToObject(object, "frames", SpansAsValue(finding.frames));
    }
    if (!finding.samples.empty()) {
        AddToObject(object, "samples", SpansAsValue(finding.samples));
    }
    AddToObject(object, "consequences",
                ArrayOf(finding.consequences, [](const Finding& inner) { return ValueOf(inner); }));
    return Value(std::move(object));
}

Value ValueOf(const AlignmentReport& alignment)
{
    Object object;
    AddToObject(object, "method", Value(NameOf(alignment.method)));
    AddToObject(object, "pictures", Value(alignment.pictures));
    AddToObject(object, "frames", Value(alignment.frames));
    AddToObject(object, "matched", Value(alignment.matched));
    AddToObject(object, "confidence", Value(alignment.confidence));
    AddToObject(object, "steps", ArrayOf(alignment.steps, [](const EditStep& step) {
                    Object row;
                    AddToObject(row, "kind", Value(step.kind));
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
    const auto text = [](const std::string& line) { return Value(line); };
    Object root;
    AddToObject(root, "version", Value(std::int64_t{Report::kVersion}));
    AddToObject(root, "clip", Value(report.clip));
    AddToObject(root, "movie", Value(report.movie));
    AddToObject(root, "verdict", Value(NameOf(report.verdict)));
    AddToObject(root, "alignment", ValueOf(report.alignment));
    AddToObject(root, "findings",
                ArrayOf(report.findings, [](const Finding& finding) { return ValueOf(finding); }));
    AddToObject(root, "asExpected", ArrayOf(report.asExpected, text));
    AddToObject(root, "notVisible", ArrayOf(report.notVisible, [](const NotVisible& check) {
                    Object row;
                    AddToObject(row, "id", Value(check.id));
                    AddToObject(row, "use", Value(check.use));
                    return Value(std::move(row));
                }));
    AddToObject(root, "notChecked", ArrayOf(report.notChecked, text));
    AddToObject(root, "notes", ArrayOf(report.notes, text));
    return qelcore::serialization::GetJSONUTF8String(Value(std::move(root)), /*formatted=*/true) + "\n";
}

std::string ReportSchema()
{
    return std::string(kSchema);
}

} // namespace tessel::verify

#include "query_json.h"

#include <cmath>
#include <string>
#include <utility>

#include "../bytes/printable.h"
#include "../summary/json.h"
#include "refused.h"

namespace mdf_reader {

namespace {

constexpr std::size_t shown_text = 100;

[[noreturn]] void refuse(const std::string& name, const std::string& expected, const Json& found) {
  throw WrongQuery("expected \"" + name + "\" of the query to be " + expected + ", found " +
                   printable(jsonLine(found), Harmless::utf8, shown_text));
}

[[noreturn]] void refuseMember(const std::string& name, const std::string& expected) {
  throw WrongQuery("expected members " + expected + ", found \"" +
                   printable(name, Harmless::utf8, shown_text) + '"');
}

std::vector<std::string> namesFrom(const std::string& name, const Json& value) {
  const std::string expected = "an array of names";
  if (!value.is_array()) {
    refuse(name, expected, value);
  }
  std::vector<std::string> names;
  for (const Json& each : value) {
    if (!each.is_string()) {
      refuse(name, expected, value);
    }
    names.push_back(each.get<std::string>());
  }
  return names;
}

std::string groupFrom(const std::string& name, const Json& value) {
  if (value.is_number_unsigned()) {
    return std::to_string(value.get<std::uint64_t>());
  }
  if (!value.is_string()) {
    refuse(name, "a number or a name", value);
  }
  return value.get<std::string>();
}

std::uint64_t wholeNumberFrom(const std::string& name, const Json& value) {
  if (!value.is_number_unsigned()) {
    refuse(name, "a number from 0 on", value);
  }
  return value.get<std::uint64_t>();
}

double numberFrom(const std::string& name, const Json& value) {
  if (!value.is_number()) {
    refuse(name, "a number", value);
  }
  return value.get<double>();
}

bool truthFrom(const std::string& name, const Json& value) {
  if (!value.is_boolean()) {
    refuse(name, "true or false", value);
  }
  return value.get<bool>();
}

std::size_t countFrom(const std::string& name, const Json& value) {
  if (!value.is_number_unsigned() || value.get<std::uint64_t>() == 0) {
    refuse(name, "a number from 1 on", value);
  }
  return static_cast<std::size_t>(
      std::min<std::uint64_t>(value.get<std::uint64_t>(), std::size_t{1} << 30U));
}

std::uint64_t recordsFrom(const std::string& name, const Json& value) {
  if (!value.is_number_unsigned() || value.get<std::uint64_t>() == 0) {
    refuse(name, "a number of records from 1 on", value);
  }
  return value.get<std::uint64_t>();
}

bool areTimestamps(const std::string& name, const Json& value) {
  if (value != "seconds" && value != "timestamps") {
    refuse(name, R"("seconds" or "timestamps")", value);
  }
  return value == "timestamps";
}

void takeMember(const std::string& name, const Json& value, QueryText& text) {
  Query& query = text.query;
  if (name == "channels") {
    query.channels = namesFrom(name, value);
  } else if (name == "group") {
    query.group = groupFrom(name, value);
  } else if (name == "element") {
    query.element = wholeNumberFrom(name, value);
  } else if (name == "from") {
    query.from = numberFrom(name, value);
  } else if (name == "to") {
    query.to = numberFrom(name, value);
  } else if (name == "skip") {
    query.skip = wholeNumberFrom(name, value);
  } else if (name == "first") {
    query.first = recordsFrom(name, value);
  } else if (name == "last") {
    query.last = recordsFrom(name, value);
  } else if (name == "stride") {
    query.stride = recordsFrom(name, value);
  } else if (name == "raw") {
    query.raw = truthFrom(name, value);
  } else if (name == "numbers") {
    query.numbers = truthFrom(name, value);
  } else if (name == "batch_rows") {
    query.batch_rows = countFrom(name, value);
  } else if (name == "threads") {
    query.threads = countFrom(name, value);
  } else if (name == "times") {
    text.has_timestamps = areTimestamps(name, value);
  } else {
    refuseMember(name,
                 R"("channels", "group", "element", "from", "to", "skip", "first", "last", )"
                 R"("stride", "raw", "numbers", "batch_rows", "threads" and "times" in the query)");
  }
}

Json parsed(std::string_view json) try {
  return Json::parse(json);
} catch (const Json::parse_error& error) {
  throw WrongQuery("expected the query to be JSON, found a mistake at byte " +
                   std::to_string(error.byte));
} catch (const Json::out_of_range&) {
  throw WrongQuery("expected numbers in the query that 64 bits can hold, found a larger one");
}

template <class Take>
void forEachMember(std::string_view json, const Take& take) {
  const Json members = parsed(json);
  if (!members.is_object()) {
    throw WrongQuery("expected the query to be a JSON object, found " +
                     printable(jsonLine(members), Harmless::utf8, shown_text));
  }
  for (const auto& [name, value] : members.items()) {
    take(name, value);
  }
}

}  // namespace

QueryText queryFrom(std::string_view json) {
  QueryText text;
  forEachMember(json,
                [&](const std::string& name, const Json& value) { takeMember(name, value, text); });
  return text;
}

QueryText frameQueryFrom(std::string_view json) {
  QueryText text;
  forEachMember(json, [&](const std::string& name, const Json& value) {
    if (name != "from" && name != "to" && name != "batch_rows" && name != "times") {
      refuseMember(name, R"("from", "to", "batch_rows" and "times" in a query of frames)");
    }
    takeMember(name, value, text);
  });
  return text;
}

DecodingText decodingFrom(std::string_view json) {
  DecodingText text;
  forEachMember(json, [&](const std::string& name, const Json& value) {
    if (name == "databases") {
      text.databases = namesFrom(name, value);
    } else if (name == "j1939") {
      text.is_j1939 = truthFrom(name, value);
    } else {
      refuseMember(name, R"("databases" and "j1939" in a query of signals)");
    }
  });
  if (text.databases.empty()) {
    throw WrongQuery("expected databases in a query of signals, found none");
  }
  return text;
}

}  // namespace mdf_reader

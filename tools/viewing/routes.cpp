#include "routes.h"

#include <cmath>
#include <cstring>
#include <functional>
#include <unordered_map>

#include "reader/summary/json.h"

namespace mdf_tools {

namespace {

Answer json(const Json& value) { return {200, "application/json", jsonLine(value)}; }

Json finiteOrNull(double number) { return std::isfinite(number) ? Json(number) : Json(); }

void addNumber(double number, std::string& bytes) {
  std::uint64_t bits = 0;
  static_assert(sizeof bits == sizeof number);
  std::memcpy(&bits, &number, sizeof bits);
  for (unsigned shift = 0; shift < 64; shift += 8) {
    bytes += static_cast<char>((bits >> shift) & 0xFFU);
  }
}

/// Little-endian numbers of 64 bits: 1 where the points are the samples and else 0, how many points
/// there are, the first and the last time of the channel, how many records it has, how many of them
/// are out of order; then x of the points, and then y, NaN for gaps.
Answer curveAnswer(const Trace& trace, const Axis& axis) {
  std::string bytes;
  for (const double number :
       {trace.is_exact ? 1.0 : 0.0, static_cast<double>(trace.x.size()), axis.first(), axis.last(),
        static_cast<double>(axis.records()), static_cast<double>(axis.outOfOrder())}) {
    addNumber(number, bytes);
  }
  for (const auto* numbers : {&trace.x, &trace.y}) {
    for (const double number : *numbers) {
      addNumber(number, bytes);
    }
  }
  return {200, "application/octet-stream", bytes};
}

/// Runs, and the texts that they have, which are numbered anew; -1 for no text, -2 for several.
Json bandsAsJson(const Bands& bands, const Window& window) {
  Json runs = Json::array();
  Json texts = Json::array();
  std::unordered_map<std::uint32_t, std::size_t> numbers;
  for (const Bands::Run& run : bands.runs(window.from, window.to, window.pixels)) {
    if (run.code >= Bands::several) {
      runs.push_back({run.time, run.code == Bands::no_text ? -1 : -2});
      continue;
    }
    const auto [known, is_new] = numbers.try_emplace(run.code, numbers.size());
    if (is_new) {
      // The code tells texts apart wherever the window is.
      texts.push_back({run.code, bands.text(run.code)});
    }
    runs.push_back({run.time, known->second});
  }
  return {{"runs", std::move(runs)}, {"texts", std::move(texts)}};
}

}  // namespace

Routes::Routes(const std::vector<std::string>& paths, std::size_t memory, OutlineCache* cache)
    : store_(memory) {
  for (const std::string& path : paths) {
    files_.push_back(std::make_unique<ViewedFile>(path, files_.size(), store_, cache));
  }
}

ViewedFile& Routes::fileOf(const ViewRequest& request) {
  return *files_[request.count("file", files_.size() - 1)];
}

void Routes::withSeries(const ViewRequest& request, const std::function<void(Series&)>& use) {
  fileOf(request).withSeries(request.count("table", SIZE_MAX), request.count("column", SIZE_MAX),
                             use);
}

Answer Routes::revisions() {
  Json list = Json::array();
  for (const auto& file : files_) {
    list.push_back(file->refresh());
  }
  return json({{"revisions", std::move(list)}});
}

Answer Routes::curve(const ViewRequest& request) {
  const Window window = request.window();
  Answer answer;
  withSeries(request, [&](Series& series) {
    answer = curveAnswer(series.isNumeric() ? series.trace(window) : Trace(), series.axis());
  });
  return answer;
}

Answer Routes::bands(const ViewRequest& request) {
  const Window window = request.window();
  Json found;
  withSeries(request, [&](Series& series) {
    found = bandsAsJson(series.bands(), window);
    found["first"] = finiteOrNull(series.axis().first());
    found["last"] = finiteOrNull(series.axis().last());
  });
  return json(found);
}

Answer Routes::value(const ViewRequest& request) {
  const double time = request.number("at");
  Json found;
  withSeries(request, [&](Series& series) {
    if (const auto sample = series.at(time)) {
      found = {{"time", sample->time}, {"value", sample->value}};
    }
  });
  return json(found);
}

Answer Routes::statistics(const ViewRequest& request) {
  const Window window = request.window();
  Extent extent;
  withSeries(request, [&](Series& series) {
    extent = series.isNumeric() ? series.extent(window.from, window.to) : Extent();
  });
  return json({{"values", extent.values},
               {"gaps", extent.gaps},
               {"minimum", finiteOrNull(extent.minimum)},
               {"maximum", finiteOrNull(extent.maximum)},
               {"first", finiteOrNull(extent.first)},
               {"last", finiteOrNull(extent.last)},
               {"mean", finiteOrNull(extent.mean)},
               {"deviation", finiteOrNull(extent.deviation())}});
}

Answer Routes::csv(const ViewRequest& request) {
  const Window window = request.window();
  return {200, "text/csv; charset=utf-8",
          fileOf(request).csv({request.count("table", SIZE_MAX), request.counts("columns"),
                               window.from, window.to})};
}

Answer Routes::answer(const std::string& name, const ViewRequest& request) {
  constexpr std::size_t most_frames = 1000;
  const std::unordered_map<std::string, std::function<Answer()>> all = {
      {"revisions", [&] { return revisions(); }},
      {"file",
       [&] {
         return Answer{200, "application/json", fileOf(request).describe()};
       }},
      {"channel",
       [&] {
         return json(fileOf(request).describeColumn(request.count("table", SIZE_MAX),
                                                    request.count("column", SIZE_MAX)));
       }},
      {"curve", [&] { return curve(request); }},
      {"bands", [&] { return bands(request); }},
      {"value", [&] { return value(request); }},
      {"statistics", [&] { return statistics(request); }},
      {"frames",
       [&] { return json(fileOf(request).frames(request.numberIfGiven("from"), most_frames)); }},
      {"csv", [&] { return csv(request); }},
      {"findings", [&] { return json(fileOf(request).findings()); }}};
  const auto found = all.find(name);
  if (found == all.end()) {
    return sentence(404, "there is nothing of this name");
  }
  try {
    return found->second();
  } catch (const WrongRequest& wrong) {
    return sentence(400, wrong.what());
  }
}

}  // namespace mdf_tools

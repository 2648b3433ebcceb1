#include "report.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <numeric>

#include "base64.h"
#include "report_page.h"
#include "viewing/request_guard.h"

namespace mdf_tools {

namespace {

std::size_t sizeInMemory(const Levels& levels) { return levels.size(); }

/// As it stands in the page, about.
std::size_t sizeInPage(const Levels& levels) {
  constexpr std::size_t around = 120;  // what names and describes it
  const std::vector<PackedNumbers> packed = levels.pack();
  return std::accumulate(packed.begin(), packed.end(), std::size_t{0},
                         [](std::size_t sum, const PackedNumbers& numbers) {
                           return sum + base64Size(numbers.bytes.size()) + around;
                         });
}

/// What is told of a channel group.
Json groupOf(const Json& info, std::size_t number) {
  const Json& groups = info["groups"];
  const auto found = std::find_if(groups.begin(), groups.end(),
                                  [number](const Json& group) { return group["group"] == number; });
  return found == groups.end() ? Json{{"group", number}} : *found;
}

/// JSON has no number that is not finite.
Json numberAsJson(double number) {
  if (std::isfinite(number)) {
    return number;
  }
  return std::isnan(number) ? "nan" : number > 0 ? "inf" : "-inf";
}

/// Puts packed numbers into blocks of the page.
class BlockStore {
 public:
  Json operator()(const PackedNumbers& numbers) {
    Json json = {{"type", numbers.type}, {"count", numbers.count}};
    if (numbers.type == "same") {
      json["value"] = numberAsJson(numbers.first);
    } else {
      json["block"] = blocks_.size();
      blocks_.push_back(base64Of(numbers.bytes));
    }
    return json;
  }
  const std::vector<std::string>& blocks() const { return blocks_; }

 private:
  std::vector<std::string> blocks_;
};

}  // namespace

void Report::beginTable(const TableHead& head) {
  std::vector<std::unique_ptr<ReportTable>>& tables = tables_.back();
  tables.push_back(std::make_unique<ReportTable>(head));
  for (Levels* const levels : tables.back()->levels()) {
    levels_.push_back(levels);
    sizes_.push_back(levels->size());
  }
}

void Report::add(const Batch& batch) {
  constexpr std::size_t usual = 4;
  // What cannot be coarsened may still be packed into less.
  constexpr std::size_t most_packed = 16;
  ReportTable& table = *tables_.back().back();
  table.add(batch);
  const std::size_t first = levels_.size() - table.levels().size();
  std::transform(table.levels().begin(), table.levels().end(),
                 sizes_.begin() + static_cast<std::ptrdiff_t>(first),
                 [](const Levels* levels) { return levels->size(); });
  if (!fitLevels(levels_, sizes_, sizeInMemory, usual * most_) &&
      std::accumulate(sizes_.begin(), sizes_.end(), std::uint64_t{0}) >
          std::uint64_t{most_packed} * most_) {
    fail();
  }
}

/// Of the channel groups those remain that tables are of.
void Report::endFile(Json facts) {
  Json tables = Json::array();
  Json groups = Json::array();
  Json& info = facts["info"];
  for (const auto& table : tables_.back()) {
    tables.push_back(table->describe());
    Json group = groupOf(info, table->group());
    table->narrow(group);
    groups.push_back(std::move(group));
  }
  info["group_count"] = info["groups"].size();
  info["groups"] = std::move(groups);
  facts["tables"] = std::move(tables);
  facts_.push_back(std::move(facts));
}

std::string Report::tryToWrite(const std::vector<EmbeddedFile>& page,
                               const ReportForm& form) const {
  BlockStore store;
  Json samples = Json::array();
  for (const auto& file : tables_) {
    Json tables = Json::array();
    for (const auto& table : file) {
      tables.push_back(table->describeSamples(std::ref(store)));
    }
    samples.push_back(std::move(tables));
  }
  const Json description = {{"title", form.title},
                            {"clock", form.has_clock},
                            {"steps", form.has_steps},
                            {"files", facts_},
                            {"samples", std::move(samples)}};
  return reportPage(page, {form.title, randomToken(), jsonLine(description), store.blocks()});
}

std::string Report::write(const std::vector<EmbeddedFile>& page, const ReportForm& form) {
  std::transform(levels_.begin(), levels_.end(), sizes_.begin(),
                 [](const Levels* levels) { return sizeInPage(*levels); });
  // What else the page has is known when it is there.
  for (std::size_t room = most_;;) {
    const bool fits = fitLevels(levels_, sizes_, sizeInPage, room);
    std::string text = tryToWrite(page, form);
    if (text.size() <= most_) {
      return text;
    }
    const std::size_t excess = text.size() - most_;
    room = std::min(room, std::accumulate(sizes_.begin(), sizes_.end(), std::size_t{0}));
    if (!fits || excess >= room) {
      fail();
    }
    room -= excess;
  }
}

void Report::fail() const {
  throw ReportTooLarge("even the coarsest report of these channels takes more than " +
                       std::to_string(most_ / 1000000) +
                       " MB; choose fewer channels, or a larger --max-size");
}

}  // namespace mdf_tools

#include "decoding.h"

#include <mdf_writer/files/file_output.h>

#include <algorithm>
#include <cerrno>
#include <functional>
#include <numeric>
#include <system_error>

#include "../bus/bus_frames.h"
#include "../bytes/nameless_file.h"
#include "../summary/stored_time.h"
#include "decoder.h"
#include "kept_frames.h"

namespace mdf_reader {

namespace {

constexpr double nanoseconds_a_second = 1e9;

struct TimedSource {
  const FrameSource* source;
  std::optional<std::int64_t> start;  ///< in nanoseconds since 1970
  double shift = 0;                   ///< in seconds, to times since the first file was begun
};

/// When the new file's times count from: what a file says.
mdf_writer::Moment momentOf(const Header& header, std::optional<std::int64_t> start) {
  mdf_writer::Moment moment;
  moment.nanoseconds = start && *start > 0 ? static_cast<std::uint64_t>(*start) : 0;
  if ((header.time_flags & Header::offsets_valid) != 0) {
    moment.is_daylight_saving = header.daylight_minutes == 60;
    moment.zone_minutes = static_cast<std::int16_t>(
        header.zone_minutes + (moment.is_daylight_saving ? 0 : header.daylight_minutes));
  }
  return moment;
}

/// Goes through the frames of a file.
std::size_t forEachFrame(const FrameSource& source, const FindingSink& report, const NoteSink& note,
                         const std::function<bool(const BusFrame&)>& take) {
  BusFrames frames(source.file, {}, {}, report, note);
  const BusFrame* frame = frames.next();
  while (frame != nullptr && take(*frame)) {
    frame = frames.next();
  }
  return frames.groups();
}

/// The sources by their starts, and the plan's start.
std::vector<TimedSource> inOrder(const std::vector<FrameSource>& sources, mdf_writer::Plan& plan) {
  std::vector<TimedSource> timed;
  std::vector<mdf_writer::Moment> moments;
  const FindingSink silent = [](const Finding& /*finding*/) {};
  const NoteSink quiet = [](const std::string& /*note*/) {};
  for (const FrameSource& source : sources) {
    const Header header = BusFrames(source.file, {}, {}, silent, quiet).header();
    const StoredTime start = startTimeOf(header);
    timed.push_back({&source, start.isUnset() ? std::nullopt : start.nanoseconds()});
    moments.push_back(momentOf(header, timed.back().start));
    if ((header.time_flags & Header::is_local_time) != 0 && timed.back().start) {
      source.note("its start is a local time; the signals say it as one of UTC");
    }
  }
  std::vector<std::size_t> order(timed.size());
  std::iota(order.begin(), order.end(), std::size_t{0});
  const bool are_known = std::all_of(
      timed.begin(), timed.end(), [](const TimedSource& each) { return each.start.has_value(); });
  if (are_known) {
    std::stable_sort(order.begin(), order.end(), [&](std::size_t left, std::size_t right) {
      return *timed[left].start < *timed[right].start;
    });
  } else if (timed.size() > 1) {
    sources.front().note("not all files say when they were begun; the times of each are kept");
  }
  std::vector<TimedSource> ordered;
  for (const std::size_t i : order) {
    ordered.push_back(timed[i]);
    ordered.back().shift =
        are_known ? static_cast<double>(*timed[i].start - *timed[order.front()].start) /
                        nanoseconds_a_second
                  : 0;
  }
  plan.start = moments[order.front()];
  return ordered;
}

/// Counts the frames of all files, and keeps those with a message. Returns how many files have
/// some.
std::uint64_t countFrames(const std::vector<TimedSource>& sources, Decoder& decoder,
                          KeptFrames& kept) {
  std::uint64_t with_frames = 0;
  for (const TimedSource& each : sources) {
    const std::size_t groups = forEachFrame(*each.source, each.source->report, each.source->note,
                                            [&](const BusFrame& frame) {
                                              const std::uint32_t id = decoder.count(frame);
                                              if (id != Decoder::none) {
                                                kept.add(id, frame.time + each.shift, frame.data);
                                              }
                                              return true;
                                            });
    with_frames += groups > 0 ? 1 : 0;
  }
  return with_frames;
}

void recordFrames(const std::vector<TimedSource>& sources, Decoder& decoder, const KeptFrames& kept,
                  mdf_writer::Recording& recording) {
  const auto record = [&](std::uint32_t id, std::string_view data, double time) {
    return decoder.record(id, data, time, recording);
  };
  if (kept.areAll()) {
    kept.forEach(record);
    return;
  }
  const FindingSink reported = [](const Finding& /*finding*/) {};
  const NoteSink noted = [](const std::string& /*note*/) {};
  for (const TimedSource& each : sources) {
    forEachFrame(*each.source, reported, noted, [&](const BusFrame& frame) {
      const std::uint32_t id = decoder.find(frame);
      return id == Decoder::none || record(id, frame.data, frame.time + each.shift);
    });
  }
}

Decoded resultOf(const Decoder& decoder) {
  Decoded result;
  result.groups = decoder.messages();
  result.other_frames = decoder.otherFrames();
  result.unknown_frames = decoder.moreFrames();
  result.is_complete = decoder.moreFrames() == 0;
  for (const IdFrames& id : decoder.ids()) {
    if (id.found.message != nullptr) {
      result.frames += id.frames;
    } else {
      result.unknown_frames += id.frames;
      result.unknown.push_back({std::string(id.bus), id.id, id.is_extended, id.frames});
    }
  }
  std::stable_sort(
      result.unknown.begin(), result.unknown.end(),
      [](const UnknownId& left, const UnknownId& right) { return left.frames > right.frames; });
  return result;
}

}  // namespace

Decoded decode(const std::vector<FrameSource>& sources, const Decoding& decoding,
               mdf_writer::Plan& plan, mdf_writer::Output& output,
               const mdf_writer::Options& options) {
  const MessageLookup lookup(decoding.databases, decoding.is_j1939);
  const std::vector<TimedSource> ordered = inOrder(sources, plan);
  Decoder decoder(lookup);
  KeptFrames kept(decoding.most_kept);
  const std::uint64_t with_frames = countFrames(ordered, decoder, kept);
  decoder.plan(plan);
  mdf_writer::Recording recording(output, plan, options);
  recordFrames(ordered, decoder, kept, recording);
  if (!recording.finish()) {
    throw CannotDecode(recording.cause());
  }
  Decoded result = resultOf(decoder);
  result.files_with_frames = with_frames;
  return result;
}

Descriptor signalFile(const FrameSource& source, const Decoding& decoding, Decoded& decoded) {
  Descriptor descriptor = namelessFile(folderForFiles());
  if (descriptor.number() < 0) {
    throw CannotDecode("cannot make a file in " + folderForFiles() + ": " +
                       std::generic_category().message(errno));
  }
  mdf_writer::FileOutput output(descriptor.number());
  mdf_writer::Plan plan;
  decoded = decode({source}, decoding, plan, output, {});
  return descriptor;
}

}  // namespace mdf_reader

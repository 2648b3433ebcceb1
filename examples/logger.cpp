// A logger: two groups of signals at rates of their own, in a file that can be opened at any
// moment.

#include <mdf_writer/mdf_writer.h>

#include <cstdint>
#include <iostream>

int main() {
  mdf_writer::Plan plan("bench run 12");
  auto& engine = plan.addGroup("engine");
  const auto rpm = engine.addChannel<float>("rpm", "1/min");
  const auto oil = engine.addChannel<std::int16_t>("oil", "°C", mdf_writer::linear(-40, 0.5));
  auto& state = plan.addGroup("state");
  const auto gear = state.addText("gear");
  plan.start.nanoseconds = 1700000000000000000;  // or leave it: the plan was made now

  mdf_writer::Options options;
  options.existing = mdf_writer::Existing::replace;
  mdf_writer::Recording recording("logger.mf4", plan, options);
  for (int i = 0; i < 1000 && recording.good(); ++i) {
    const std::int64_t now = i * std::int64_t{10'000'000};  // nanoseconds since the start
    engine.set(rpm, 800.0F + static_cast<float>(i));
    engine.set(oil, static_cast<std::int16_t>(160 + i / 10));
    recording.append(engine, now);
    if (i % 250 == 0) {
      state.set(gear, i == 0 ? "neutral" : i == 250 ? "first" : "second");
      recording.append(state, now);
    }
  }
  if (!recording.finish()) {
    std::cerr << recording.cause() << '\n';
    return 1;
  }
  return 0;
}

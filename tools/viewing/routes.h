#ifndef MDF_TOOLS_VIEWING_ROUTES_H_
#define MDF_TOOLS_VIEWING_ROUTES_H_

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "answer.h"
#include "series_store.h"
#include "view_request.h"
#include "viewed_file.h"

namespace mdf_tools {

/// Answers what the page asks for. Any number of threads may use it.
///
///   revisions                                        how often each file has changed
///   file?file                                        what is in a file
///   channel?file&table&column                        what is told of a channel
///   curve?file&table&column&from&to&pixels           see curveAnswer() in the source
///   bands?file&table&column&from&to&pixels           runs of a text channel
///   value?file&table&column&at                       the last sample up to a time
///   statistics?file&table&column&from&to&pixels      of the samples in between
///   frames?file&from                                 frames of buses
///   csv?file&table&columns&from&to&pixels            samples
///   findings?file                                    what mdf check finds
class Routes {
 public:
  /// @param paths measurement files.
  /// @param memory bytes for what is kept of channels.
  /// @param cache where outlines of channels are looked for and kept; it must outlast this. Null
  /// for nowhere.
  /// @throws Unreadable when one cannot be opened.
  Routes(const std::vector<std::string>& paths, std::size_t memory, OutlineCache* cache = nullptr);

  /// @param name of the question, such as "curve".
  Answer answer(const std::string& name, const ViewRequest& request);

 private:
  ViewedFile& fileOf(const ViewRequest& request);
  Answer revisions();
  Answer curve(const ViewRequest& request);
  Answer bands(const ViewRequest& request);
  Answer value(const ViewRequest& request);
  Answer statistics(const ViewRequest& request);
  Answer csv(const ViewRequest& request);
  void withSeries(const ViewRequest& request, const std::function<void(Series&)>& use);

  SeriesStore store_;
  std::vector<std::unique_ptr<ViewedFile>> files_;
};

}  // namespace mdf_tools

#endif  // MDF_TOOLS_VIEWING_ROUTES_H_

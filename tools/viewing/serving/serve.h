#ifndef MDF_TOOLS_VIEWING_SERVING_SERVE_H_
#define MDF_TOOLS_VIEWING_SERVING_SERVE_H_

namespace mdf_tools {

class Server;

/// Serves until Ctrl-C (SIGINT), SIGTERM or a closed terminal (SIGHUP).
void serveUntilSignal(Server& server);

}  // namespace mdf_tools

#endif  // MDF_TOOLS_VIEWING_SERVING_SERVE_H_

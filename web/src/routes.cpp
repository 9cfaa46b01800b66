// The one list of the API's areas: a new area is a routes_<area>.cpp with
// its Register function, declared in routes.h and called here.
#include "routes.h"

namespace velqua_web {

void RegisterRoutes(Api& api) {
  RegisterSessionRoutes(api);
  RegisterSwitchRoutes(api);
  RegisterCallRoutes(api);
  RegisterLiveRoutes(api);
  RegisterDashboardRoutes(api);
  RegisterDirectoryRoutes(api);
  RegisterEditorRoutes(api);
#ifdef VELQUA_WEB_HAS_REPORTS
  RegisterReportRoutes(api);
#endif
  RegisterCaptureRoutes(api);
}

}  // namespace velqua_web

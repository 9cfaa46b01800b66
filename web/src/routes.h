// The API's areas. Each registers its routes in its own file
// (routes_<area>.cpp); RegisterRoutes (routes.cpp) is the one list of them.
#pragma once

namespace velqua_web {

class Api;

void RegisterSessionRoutes(Api& api);    // /api/session, /api/login, /api/logout
void RegisterSwitchRoutes(Api& api);     // /api/switches
void RegisterCallRoutes(Api& api);       // /api/calls, /api/calls/ID, /api/calls/export.csv
void RegisterLiveRoutes(Api& api);       // /api/live (server-sent events)
void RegisterDashboardRoutes(Api& api);  // /api/dashboard
void RegisterDirectoryRoutes(Api& api);  // /api/directory, /api/tariffs
void RegisterEditorRoutes(Api& api);     // /api/editor: the layout editor
void RegisterReportRoutes(Api& api);     // /api/reports: every kind, in every form
void RegisterCaptureRoutes(Api& api);    // /api/capture: the capture services' status

// Every area's routes.
void RegisterRoutes(Api& api);

}  // namespace velqua_web

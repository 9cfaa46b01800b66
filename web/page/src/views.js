// The one list of the page's views, in the order of the menu. A view is a
// module under views/ exporting
//   { id, title, role: 'viewer' | 'admin', render(root, context) }
// where render fills `root` and may return a function that stops what it
// started (a live feed, a timer) when the user leaves the view.
import dashboard from './views/dashboard.js';
import live from './views/live.js';
import calls from './views/calls.js';
import switches from './views/switches.js';
import reports from './views/reports.js';
import capture from './views/capture.js';
import directory from './views/directory.js';
import configurations from './views/configurations.js';

export const views = [dashboard, live, calls, reports, switches, capture, directory, configurations];

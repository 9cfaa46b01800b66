# What a biller relies on, end to end: damaged records kept as unrecognised
# with the reason, never as calls. Included from tests.cmake.

# A record the translator reads but whose fields cannot be a call's (letters
# in a duration, hour 27, 31 February, month 13, 75 seconds, a line of 9s)
# is kept as unrecognised with the reason; the run ends with status 3.
velqua_e2e(damaged_hicom 3 --now "2026-03-10 09:00:00" translate -c hicom --format csv
           tests/e2e/data/hicom-damaged.txt)
velqua_e2e(damaged_kx_tda 3 --now "2026-01-20 09:00:00" translate -c kx-tda --format csv
           tests/e2e/data/kx-tda-damaged.txt)
velqua_e2e(damaged_check 0 --now "2026-03-10 09:00:00" config check hicom
           tests/e2e/data/hicom-damaged.txt)

# An account code missing from the extension list: the extension is left blank
# (the account code kept, the row marked, a warning), unless the library's
# random draw is asked for. A bundled switch brings its own extension list.
velqua_e2e(unlisted_account_blank 0 --now "2026-01-20 09:00:00" translate
           -c examples/kx-tda/kx-tda.json --format csv ${KX_RECORDS}
           SAME_AS kx_tda_no_extension_list)
velqua_e2e(unlisted_account_drawn 0 --now "2026-01-20 09:00:00" translate
           -c examples/kx-tda/kx-tda.json --random-extensions --format csv ${KX_RECORDS})
velqua_e2e(bundled_extension_list 0 --now "2026-01-20 09:00:00" translate -c kx-tda --format csv
           ${KX_RECORDS} SAME_AS kx_tda_csv)

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

# A file is known by its first bytes, whatever its name: records imported
# from standard input under a name of their own are not stored again when the
# same file comes by its path. TZ fixed: times received are stored in UTC.
set(SOURCES_STORE ${VELQUA_E2E_TMP}/sources.db)
set(SOURCES_IMPORT --now "2026-03-10 09:00:00" import --db ${SOURCES_STORE} --switch hicom
                   -c hicom --year 2026)
velqua_e2e(import_standard_input 3 ${SOURCES_IMPORT} --source old-2025 -
           INPUT tests/e2e/data/hicom-damaged.txt PRODUCED ${SOURCES_STORE})
velqua_e2e(import_same_bytes_other_name 0 ${SOURCES_IMPORT} tests/e2e/data/hicom-damaged.txt)
velqua_e2e(error_import_standard_input_unnamed 1 ${SOURCES_IMPORT} -)
set_tests_properties(cli.e2e.import_standard_input PROPERTIES FIXTURES_SETUP e2e_sources
                     ENVIRONMENT TZ=UTC)
set_tests_properties(cli.e2e.import_same_bytes_other_name
                     cli.e2e.error_import_standard_input_unnamed
                     PROPERTIES FIXTURES_REQUIRED e2e_sources ENVIRONMENT TZ=UTC)

# The unrecognised records of a store, with source, position, reason and raw
# text, in every form; other call filters make no sense for them.
velqua_e2e(calls_unrecognised_table 0 calls --db ${SOURCES_STORE} --unrecognised --format table)
velqua_e2e(calls_unrecognised_jsonl 0 calls --db ${SOURCES_STORE} --unrecognised --format jsonl
           --switch hicom --limit 3)
velqua_e2e(error_calls_unrecognised_filter 1 calls --db ${SOURCES_STORE} --unrecognised
           --extension 21)
set_tests_properties(cli.e2e.calls_unrecognised_table cli.e2e.calls_unrecognised_jsonl
                     cli.e2e.error_calls_unrecognised_filter
                     PROPERTIES FIXTURES_REQUIRED e2e_sources ENVIRONMENT TZ=UTC)

# A dry run says what a corrected configuration would change (records moved
# between calls and unrecognised, calls updated and in which columns) and
# writes nothing: run again, it says the same.
velqua_e2e(retranslate_dry_run 0 retranslate --db ${SOURCES_STORE} --switch hicom
           -c tests/e2e/data/hicom-one-digit-seconds.json --dry-run)
velqua_e2e(retranslate_dry_run_again 0 retranslate --db ${SOURCES_STORE} --switch hicom
           -c tests/e2e/data/hicom-one-digit-seconds.json -n SAME_AS retranslate_dry_run)
set_tests_properties(cli.e2e.retranslate_dry_run PROPERTIES FIXTURES_REQUIRED e2e_sources
                     FIXTURES_SETUP e2e_dry_run ENVIRONMENT TZ=UTC)
set_tests_properties(cli.e2e.retranslate_dry_run_again PROPERTIES
                     FIXTURES_REQUIRED "e2e_sources;e2e_dry_run" ENVIRONMENT TZ=UTC)

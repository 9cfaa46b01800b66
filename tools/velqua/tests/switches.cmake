# End-to-end tests of the bundled switches (examples/<switch>/), included from
# tests.cmake. The expected rows of each switch (tests/e2e/golden/switch_*.out)
# were written by hand from the switch's documented layout and the sample
# records, field by field, not taken from the program's output: a wrong column,
# mark or case in a configuration shows up as a difference here.

# velqua_switch(NAME [--year YYYY]): translates examples/NAME/records.txt with
# the bundled switch NAME, chosen by name (not by path).
# Names are looked up in $VELQUA_EXAMPLES first: every case names this source
# tree's folder, so that an installed copy never stands in for it.
set(VELQUA_SOURCE_EXAMPLES "VELQUA_EXAMPLES=${PROJECT_SOURCE_DIR}/examples")
function(velqua_switch name)
  string(REPLACE "-" "_" case_name "${name}")
  velqua_e2e(switch_${case_name} 0 --now "2026-03-11 09:00:00" translate -c ${name}
             ${ARGN} --format csv examples/${name}/records.txt)
  set_tests_properties(cli.e2e.switch_${case_name} PROPERTIES ENVIRONMENT
                       "${VELQUA_SOURCE_EXAMPLES}")
endfunction()

velqua_switch(ip-office)
velqua_switch(asterisk)
velqua_switch(3cx)
velqua_switch(esi-ivx)
velqua_switch(nec-sv --year 2026)
velqua_switch(hipath-3000)
velqua_switch(kx-ns --extensions examples/kx-ns/extensions.txt)
velqua_switch(panasonic-dbs --year 2026)
velqua_switch(samsung-officeserv --year 2026)
velqua_switch(mitel-5000)
velqua_switch(toshiba-ctx --year 2026)
velqua_switch(grandstream-ucm)

# Real records from other sites (examples/NAME/corpus/records.txt, each one's
# source in examples/NAME/SOURCES.md), translated by the bundled switch. Their
# rows (tests/e2e/golden/corpus_*.out) were checked field by field against the
# switch's documented fields: a record the configuration misreads shows here.
function(velqua_corpus name)
  string(REPLACE "-" "_" case_name "${name}")
  velqua_e2e(corpus_${case_name} 0 --now "2026-03-11 09:00:00" translate -c ${name}
             ${ARGN} --format csv examples/${name}/corpus/records.txt)
  set_tests_properties(cli.e2e.corpus_${case_name} PROPERTIES ENVIRONMENT
                       "${VELQUA_SOURCE_EXAMPLES}")
endfunction()

velqua_corpus(ip-office --encoding utf-8)
velqua_corpus(asterisk)
velqua_corpus(kx-tda --extensions examples/kx-tda/extensions.txt)
velqua_corpus(kx-ns --extensions examples/kx-ns/extensions.txt)
velqua_corpus(mitel-5000)
# Asterisk records of dial plans unlike the corpus's (PJSIP peers, queue legs
# through Local/ channels, Dial strings that carry the number and the trunk):
# examples/asterisk/dialplans.txt, each line's origin in its SOURCES.md.
velqua_e2e(switch_asterisk_dialplans 0 --now "2026-03-11 09:00:00" translate -c asterisk
           --format csv examples/asterisk/dialplans.txt)
set_tests_properties(cli.e2e.switch_asterisk_dialplans PROPERTIES ENVIRONMENT
                     "${VELQUA_SOURCE_EXAMPLES}")

# The list of bundled switches, from the source tree and from a folder named by
# $VELQUA_EXAMPLES (an installed copy); an unknown name is refused.
velqua_e2e(switches_list 0 switches)
velqua_e2e(switches_from_environment 0 switches)
velqua_e2e(error_unknown_switch 1 translate -c pbx-9000 examples/kx-tda/records.txt)
set_tests_properties(cli.e2e.switches_list cli.e2e.error_unknown_switch PROPERTIES ENVIRONMENT
                     "${VELQUA_SOURCE_EXAMPLES}")
set_tests_properties(cli.e2e.switches_from_environment PROPERTIES ENVIRONMENT
                     "VELQUA_EXAMPLES=${PROJECT_SOURCE_DIR}/tests/e2e/data/examples")
velqua_e2e(convert_delimited_to_cfg_refused 1 config convert examples/ip-office/ip-office.json
           ${VELQUA_E2E_TMP}/ip-office.cfg)

# config guess on every bundled switch's sample, scored against its own
# configuration: the figures of doc/guess.md, pinned so that a change to the
# guess shows here as a better or worse score.
file(GLOB VELQUA_BUNDLED LIST_DIRECTORIES true RELATIVE ${PROJECT_SOURCE_DIR}/examples
     ${PROJECT_SOURCE_DIR}/examples/*)
foreach(name ${VELQUA_BUNDLED})
  if(EXISTS ${PROJECT_SOURCE_DIR}/examples/${name}/${name}.json)
    string(REPLACE "-" "_" case_name "${name}")
    velqua_e2e(guess_${case_name} 0 config guess examples/${name}/records.txt --compare ${name})
    set_tests_properties(cli.e2e.guess_${case_name} PROPERTIES ENVIRONMENT
                         "${VELQUA_SOURCE_EXAMPLES}")
  endif()
endforeach()
# The draft itself, in the JSON form, for a switch with page headings.
velqua_e2e(guess_draft_nec 0 config guess --brand NEC --model SV9100 examples/nec-sv/records.txt
           -o ${VELQUA_E2E_TMP}/nec-draft.json PRODUCED ${VELQUA_E2E_TMP}/nec-draft.json
           GOLDEN tests/e2e/golden/guess_draft_nec.json)
velqua_e2e(error_guess_missing_records 1 config guess examples/none.txt)

# config check frames its sample as translate does: a delimited record shown
# as it came and shaped under the ruler, page headings shown as skipped.
velqua_e2e(check_asterisk_delimited 0 config check examples/asterisk/asterisk.json
           examples/asterisk/records.txt)
velqua_e2e(check_nec_headings 0 config check examples/nec-sv/nec-sv.json
           examples/nec-sv/records.txt)

# The search box example with each of its toggles: cmake -DBOX=<scl_regex_search_box>
# -DWORK=<directory> -P check_search_box.cmake
include(${CMAKE_CURRENT_LIST_DIR}/../support/run.cmake)

set(text "${WORK}/search_box_text.txt")
file(WRITE ${text} "Résumé, RESUME, e-mail\nCafé cafe CAFÉ cafè\na cat, concat, cats\nÅrhus Aarhus Anger\n")

# expect(<expected output> <arguments>...): the box prints exactly this.
function(expect expected)
  run(${BOX} --brackets ${ARGN} ${text})
  if(NOT last_output STREQUAL expected)
    string(REPLACE ";" " " args "${ARGN}")
    message(FATAL_ERROR "search box ${args}:\n${last_output}\nexpected:\n${expected}")
  endif()
endfunction()

expect("1: [Résumé], [RESUME], e-mail\n2 matches in 1 line\n" resume)
expect("1: [Résumé], RESUME, e-mail\n1 match in 1 line\n" --match-case Resume)
expect("1: Résumé, [RESUME], e-mail\n1 match in 1 line\n" --match-diacritics resume)
expect("2: [Café] cafe [CAFÉ] cafè\n2 matches in 1 line\n" --match-typed-diacritics café)
expect("2: [Café] [cafe] [CAFÉ] [cafè]\n4 matches in 1 line\n" --match-typed-diacritics cafe)
expect("3: a [cat], concat, cats\n1 match in 1 line\n" --whole-words cat)
expect("1: Résumé, RESUME, [e-mail]\n1 match in 1 line\n" --ignore-punctuation email)
expect("2: [Café] [cafe] [CAFÉ] cafè\n3 matches in 1 line\n" --match-diacritics --regex "caf[eé]\\b")

expect("searching as da-u-co-search\n4: [Århus] [Aarhus] Anger\n2 matches in 1 line\n"
       --locale da aarhus)
expect("searching as sv-u-co-search\n4: Århus Aarhus [Anger]\n1 match in 1 line\n"
       --locale sv_SE anger)

# An ill-formed language tag is a bad query.
execute_process(COMMAND ${BOX} --locale "sv!" x ${text} RESULT_VARIABLE rc OUTPUT_QUIET
                ERROR_VARIABLE err)
if(NOT rc EQUAL 2 OR NOT err MATCHES "locale")
  message(FATAL_ERROR "an ill-formed locale gave ${rc}: ${err}")
endif()

# An unknown toggle is a usage error.
execute_process(COMMAND ${BOX} --match-everything x ${text} RESULT_VARIABLE rc
                OUTPUT_QUIET ERROR_VARIABLE err)
if(NOT rc EQUAL 2 OR NOT err MATCHES "--match-typed-diacritics")
  message(FATAL_ERROR "an unknown toggle gave ${rc}: ${err}")
endif()

# Fails when a folder includes what its layer may not use. Run by CTest as
#   cmake -DSOURCE_DIR=<project> -P Layering.cmake
# Each rule: a folder, then the include prefixes forbidden in it, apart by
# commas; a prefix after "!" is allowed even where a shorter one is not.
set(rules
  "engine|<Q,core/,files/,views/,ui/,reports/,tools/"
  "core|files/,views/,ui/,reports/,tools/,<QtGui,<QtWidgets,<QtPrintSupport,<QtMultimedia"
  "files|views/,ui/,reports/,tools/,<QtGui,<QtWidgets"
  "views|ui/,reports/,tools/,<QtGui,<QtWidgets"
  "reports|ui/,tools/,<QtGui,<QtWidgets"
  "ui/paint|<QtWidgets,<QWidget,<QApplication,files/,reports/,tools/,ui/,!ui/paint/"
  "tools|<QtWidgets,<QWidget,<QApplication,ui/,!ui/paint/"
  "bench|<QtWidgets,<QWidget,<QApplication,ui/,!ui/paint/")
set(broken "")
foreach(rule ${rules})
  string(REPLACE "|" ";" parts "${rule}")
  string(REPLACE "," ";" parts "${parts}")
  list(GET parts 0 folder)
  list(REMOVE_AT parts 0)
  file(GLOB_RECURSE sources ${SOURCE_DIR}/${folder}/*.h ${SOURCE_DIR}/${folder}/*.cpp)
  foreach(source ${sources})
    file(STRINGS ${source} includes REGEX "^[ \t]*#[ \t]*include")
    foreach(line ${includes})
      string(REGEX REPLACE "^[ \t]*#[ \t]*include[ \t]*[\"]?" "" target "${line}")
      set(forbidden FALSE)
      foreach(prefix ${parts})
        string(REGEX REPLACE "^!" "" bare "${prefix}")
        string(FIND "${target}" "${bare}" at)
        if(at EQUAL 0)
          if(bare STREQUAL prefix)
            set(forbidden TRUE)
          else()
            set(forbidden FALSE)
            break()
          endif()
        endif()
      endforeach()
      if(forbidden)
        file(RELATIVE_PATH name ${SOURCE_DIR} ${source})
        string(APPEND broken "  ${name}: ${line}\n")
      endif()
    endforeach()
  endforeach()
endforeach()
if(broken)
  message(FATAL_ERROR "Includes that cross a layer:\n${broken}")
endif()

# Fails when a folder includes what its layer may not use. Run by CTest as
#   cmake -DSOURCE_DIR=<project> -P Layering.cmake
# Each rule: a folder, then the include prefixes forbidden in it, apart by
# commas.
set(rules
  "engine|<Q,core/,files/,views/,ui/,reports/,tools/"
  "core|files/,views/,ui/,reports/,tools/,<QtGui,<QtWidgets,<QtPrintSupport,<QtMultimedia"
  "files|views/,ui/,reports/,tools/,<QtGui,<QtWidgets"
  "views|ui/,reports/,tools/,<QtGui,<QtWidgets"
  "reports|ui/,tools/,<QtGui,<QtWidgets"
  "ui/paint|<QtWidgets,<QWidget,<QApplication,files/,reports/,tools/"
  "tools|<QtWidgets,<QWidget,<QApplication,ui/Main,ui/Signal,ui/Workspace"
  "bench|<QtWidgets,<QWidget,<QApplication,ui/Main,ui/Signal,ui/Workspace")
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
      foreach(prefix ${parts})
        string(FIND "${target}" "${prefix}" at)
        if(at EQUAL 0)
          file(RELATIVE_PATH name ${SOURCE_DIR} ${source})
          string(APPEND broken "  ${name}: ${line}\n")
        endif()
      endforeach()
    endforeach()
  endforeach()
endforeach()
if(broken)
  message(FATAL_ERROR "Includes that cross a layer:\n${broken}")
endif()

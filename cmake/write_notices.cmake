# cmake -D OUTPUT=FILE -D LICENSE=FILE -D FOLDERS="FOLDER;..." -D PACKAGES="NAME;..." -P write_notices.cmake
#
# Writes three files: OUTPUT with the licences of the packages, one section for each; OUTPUT.copyright
# with the project's own licence before them; OUTPUT.cpp with the same text as a C++ array.
# The licence of NAME is FOLDER/NAME/copyright in the first folder that has it; NAME may be a pattern.

cmake_minimum_required(VERSION 3.25)

set(line =======================================================================)
set(notices "trackedcam contains parts of these packages. Their licences follow, and after them the
texts of the licences that they only name.\n")
set(named "")

# A very long file lists each source file. Keep its entry for all files, and the licences.
function(shorten variable)
  string(LENGTH "${${variable}}" length)
  string(FIND "${${variable}}" "\n\nFiles:" first)
  string(FIND "${${variable}}" "\n\nLicense:" licences)
  if(length LESS 200000 OR first LESS 0 OR licences LESS first)
    return()
  endif()
  math(EXPR after_first "${first} + 2")
  string(SUBSTRING "${${variable}}" ${after_first} -1 rest)
  string(FIND "${rest}" "\n\nFiles:" second)
  math(EXPR second "${after_first} + ${second} + 2")
  string(SUBSTRING "${${variable}}" 0 ${second} head)
  string(SUBSTRING "${${variable}}" ${licences} -1 tail)
  set(${variable} "${head}[The package lists its single files here.]${tail}" PARENT_SCOPE)
endfunction()

foreach(package IN LISTS PACKAGES)
  set(found "")
  foreach(folder IN LISTS FOLDERS)
    file(GLOB files ${folder}/${package}/copyright)
    if(files AND NOT found)
      list(SORT files)
      list(GET files -1 found)
    endif()
  endforeach()
  if(NOT found)
    message(FATAL_ERROR "The licence of ${package} is in none of ${FOLDERS}.")
  endif()
  get_filename_component(name ${found} DIRECTORY)
  get_filename_component(name ${name} NAME)
  file(READ ${found} text)
  shorten(text)
  string(APPEND notices "\n${line}\nPackage ${name}\n${line}\n\n${text}")
  string(REGEX MATCHALL "/usr/share/common-licenses/[A-Za-z0-9.-]*[A-Za-z0-9]" paths "${text}")
  list(APPEND named ${paths})
endforeach()

# Several names are links to one text: GPL is a link to the newest.
set(licences "")
foreach(path IN LISTS named)
  get_filename_component(path ${path} REALPATH)
  if(EXISTS ${path})
    list(APPEND licences ${path})
  endif()
endforeach()
list(REMOVE_DUPLICATES licences)
list(SORT licences)
foreach(path IN LISTS licences)
  get_filename_component(name ${path} NAME)
  file(READ ${path} text)
  string(APPEND notices "\n${line}\nLicence ${name}\n${line}\n\n${text}")
endforeach()

file(READ ${LICENSE} own)
set(copyright "${own}\n${line}\n\n${notices}")
file(WRITE ${OUTPUT} "${notices}")
file(WRITE ${OUTPUT}.copyright "${copyright}")

# One literal for each line: compilers limit the length of a literal.
string(REPLACE "\\" "\\\\" copyright "${copyright}")
string(REPLACE "\"" "\\\"" copyright "${copyright}")
string(REPLACE "?" "\\?" copyright "${copyright}")
string(REPLACE "\t" "\\t" copyright "${copyright}")
string(ASCII 12 form_feed)
string(REPLACE "${form_feed}" "\\f" copyright "${copyright}")
string(REPLACE "\n" "\\n\",\n\"" copyright "${copyright}")
file(WRITE ${OUTPUT}.cpp "#include \"app/licences.h\"

// NOLINTBEGIN
static const char* const kLines[] = {
\"${copyright}\", nullptr};
const char* const* const trackedcam::app::kLicences = kLines;
// NOLINTEND
")

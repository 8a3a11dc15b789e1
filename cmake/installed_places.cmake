# SPDX-License-Identifier: MIT
# Where things are installed, and how the installed program finds them: by paths that are relative to
# its own directory, so that an installation may be moved as a whole.
include(GNUInstallDirs)
set(KELVORA_INSTALL_DOCDIR ${CMAKE_INSTALL_DATAROOTDIR}/doc/kelvora)

function(kelvora_path_from_program variable directory)
    file(RELATIVE_PATH path ${CMAKE_INSTALL_FULL_BINDIR} ${directory})
    set(${variable} ${path} PARENT_SCOPE)
endfunction()
kelvora_path_from_program(KELVORA_LIBRARIES_FROM_PROGRAM ${CMAKE_INSTALL_FULL_LIBDIR})
kelvora_path_from_program(KELVORA_DATA_FROM_PROGRAM ${CMAKE_INSTALL_FULL_DATADIR})
kelvora_path_from_program(KELVORA_DOCUMENTS_FROM_PROGRAM ${CMAKE_INSTALL_FULL_DATAROOTDIR}/doc/kelvora)

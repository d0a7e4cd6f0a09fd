# What Windows shows as a program's properties:
#   murmelon_version(murmelon_tool murmelon.exe "Its sound, editor and files, from the command line")

if(WIN32)
  enable_language(RC)
endif()

function(murmelon_version target file description)
  if(NOT WIN32)
    return()
  endif()
  string(REPLACE . , numbers ${PROJECT_VERSION})
  if(file MATCHES "dll$")
    set(type VFT_DLL)
  else()
    set(type VFT_APP)
  endif()
  file(CONFIGURE OUTPUT ${target}.rc @ONLY CONTENT [[
#include <winver.h>
VS_VERSION_INFO VERSIONINFO
FILEVERSION @numbers@
PRODUCTVERSION @numbers@
FILEFLAGSMASK VS_FFI_FILEFLAGSMASK
FILEOS VOS_NT_WINDOWS32
FILETYPE @type@
BEGIN
  BLOCK "StringFileInfo"
  BEGIN
    BLOCK "040904B0"
    BEGIN
      VALUE "CompanyName", "Korvanta"
      VALUE "FileDescription", "@description@"
      VALUE "FileVersion", "@PROJECT_VERSION@"
      VALUE "InternalName", "murmelon"
      VALUE "LegalCopyright", "Copyright 2026 Korvanta"
      VALUE "OriginalFilename", "@file@"
      VALUE "ProductName", "Murmelon"
      VALUE "ProductVersion", "@PROJECT_VERSION@"
    END
  END
  BLOCK "VarFileInfo"
  BEGIN
    VALUE "Translation", 0x409, 1200
  END
END
]])
  target_sources(${target} PRIVATE ${CMAKE_CURRENT_BINARY_DIR}/${target}.rc)
endfunction()

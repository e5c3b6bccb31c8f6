# Copies what ships beside the program into FOLDER. A user's own scenes and settings there are left alone;
# shipped files are replaced.
foreach(directory Data Scenes)
  if(EXISTS ${SOURCE}/${directory})
    file(COPY ${SOURCE}/${directory} DESTINATION ${FOLDER}
      PATTERN "_AUTOSAVE.vxa" EXCLUDE PATTERN "_ONEXITSAVE.vxa" EXCLUDE PATTERN "*.tmp" EXCLUDE)
  endif()
endforeach()
foreach(name Vexa.bmp autoexec.cfg)
  if(EXISTS ${SOURCE}/${name})
    file(COPY ${SOURCE}/${name} DESTINATION ${FOLDER})
  endif()
endforeach()
file(MAKE_DIRECTORY ${FOLDER}/Scenes ${FOLDER}/Screenshots)

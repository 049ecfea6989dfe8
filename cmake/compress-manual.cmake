# Run by CPack before it packs: Debian keeps manuals compressed.
file(GLOB_RECURSE manual ${CPACK_TEMPORARY_DIRECTORY}/kelst.1)
execute_process(COMMAND gzip --best --no-name ${manual} COMMAND_ERROR_IS_FATAL ANY)

# Fails unless the README contains the host's source, from its first include on.
file(READ ${README} readme)
file(READ ${HOST} host)
string(FIND "${host}" "#include" begin)
string(SUBSTRING "${host}" ${begin} -1 host)
string(FIND "${readme}" "${host}" found)
if(found EQUAL -1)
  message(FATAL_ERROR "${README} does not show ${HOST}")
endif()

# The records' table of docs/reference.md, and the methods of kvdb/gates.h, as macro calls for host.cpp:
#
#     RECORD(ProjInfo, 64, 104)                       sizes with 32 and 64 bits
#     MEMBER(ProjInfo, CString, Name, 8, 8)           offsets with 32 and 64 bits
#     END(ProjInfo)
#     TABLE(IDBgate1, Proj, ProjInfo)                 has AddProj and FindProj
BEGIN { FS = "|" }
/^\| `[A-Za-z]+` \| [0-9]+\/[0-9]+ \|/ {
    record = $2
    gsub(/[` ]/, "", record)
    split($3, size, "[ /]+")
    print "RECORD(" record ", " size[2] ", " size[3] ")"
    count = split($4, members, ",")
    for (i = 1; i <= count; ++i) {
        split(members[i], word, " ")
        split(word[1], offset, "/")
        print "MEMBER(" record ", " word[2] ", " word[3] ", " offset[1] ", " offset[2] ")"
    }
    print "END(" record ")"
}
/^struct IDB[A-Za-z0-9]+ : IDispatch/ {
    gate = $0
    gsub(/struct | :.*/, "", gate)
}
/ Add[A-Za-z]+\(LONG_PTR / {
    method = $0
    record = $0
    sub(/.* Add/, "", method)
    sub(/\(.*/, "", method)
    sub(/.*LONG_PTR p/, "", record)
    sub(/\).*/, "", record)
    print "TABLE(" gate ", " method ", " record ")"
}

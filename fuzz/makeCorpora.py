#!/usr/bin/env python3
"""Writes the seed corpora. A file that a fuzz run has found is added by hand beside them, so what
is there already and has another name stays."""

import pathlib
import struct

CORPORA = pathlib.Path(__file__).resolve().parent / "corpora"


def text(*lines):
    return "\n".join(lines).encode()


def little(*numbers):
    return struct.pack("<%dI" % len(numbers), *numbers)


OPTION_PARSER = {
    "flagsInOneWord": text("options", "ab", "", "prog", "-ab", "file"),
    "valueInWord": text("options", "o:", "", "prog", "-otext", "rest"),
    "valueInNextWord": text("options", "vo:", "", "prog", "-vo", "-text", "-v"),
    "valueIsMissing": text("options", "o:", "n", "prog", "-o"),
    "severalValues": text("options", "o:v", "nnn", "prog", "-o1", "2", "-3", "-v"),
    "emptyWords": text("options", "o:v", "n", "prog", "-o", "", "", "-v"),
    "twoDashes": text("options", "v", "", "prog", "-v", "--long", "-v"),
    "oneDash": text("options", "v", "", "prog", "-v", "-", "-v"),
    "unknownLetters": text("options", "v", "", "prog", "-xvy", "-v"),
    "bytesBeyondAscii": "options\n\u00e9:\n\nprog\n-\u00e9\n".encode("latin-1"),
    "colonAsLetter": text("options", "o:", "", "prog", "-:"),
    "subOptions": text("sub", "a b c", "a=1,b,x=2,c="),
    "subOptionsEmptyPieces": text("sub", "a ", ",=,a=,=a,"),
    "subOptionValueWithSign": text("sub", "a a", "a==b=,a"),
}

ARG_ALIASES = {
    "flagAndValue": text("v o:", "-v", "-o", "text", "file"),
    "lastValueCounts": text("o:", "-o1", "-o2"),
    "unknownEnds": text("v o:", "-v", "-x", "-o", "1"),
    "unknownInWord": text("v w", "-vxw", "rest"),
    "valueIsMissing": text("o:", "-o"),
    "dashesAreConsumed": text("v", "-v", "--", "-v"),
    "keyTwice": text("o o: o", "-o", "1"),
    "noAlias": text("", "-v", "file"),
    "noWord": text("v o:"),
    "emptyWords": text("o: v", "-o", "", "", "-v"),
    "digitKeys": text("1 2:", "-12", "-1"),
}

GROUP_LEVELS = {
    "severalGroups": text("", "Database=Warning,UI=Informational,Radiosity=Profiling"),
    "everyLevel": text("Error", "a=Internal Error,b=Fatal Error,c=Error", "d=Warning,e=Tracing"),
    "profilingStays": text("Warning", "A=Profiling,A=Error"),
    "onlyProfiling": text("Profiling", "A=Profiling"),
    "profilingThenError": text("Profiling", "A=Error,B=Profiling"),
    "badLevelGoesOn": text("warning", "A=warning,B=Tracing,C=Error "),
    "withoutLevel": text("", "A=Error,B"),
    "withoutLevelInPair": text("", "A=Error,B=", "C=Tracing"),
    "separatorsInFront": text("", "==A=,,Error,,B==Error,,=Error"),
    "longName": text("", "anExtremelyLongNameOfAGroupOfLevels=Error"),
    "lowestThreshold": text("Internal Error", "A=Internal Error"),
}

LOG_SETUP = {
    "allUnset": text(""),
    "oneFileForAll": text("a", "a", "a", "a", "a", "a", "a", "Tracing"),
    "echoes": text("%", "%x", "%+x", "%+", "%%x", "%", "%", "Profiling"),
    "appends": text("+", "+x", "++x", "++", "+%x", "+ab", "++ab", "Internal Error"),
    "switchedOff": text("--", "--x", "-x", "-", "--", "%--", "+--", "Fatal Error"),
    "firstLevelDecides": text("+x", "y", "z", "+ab", "ab", "--", "%+x", "tracing"),
    "firstLevelTruncates": text("x", "+x", "", "ab", "++ab", "--", "--"),
}

TRACE_OPTIONS = {
    "defaults": text("a/b/c.cpp", ""),
    "line": text("trace.cpp", "line,fnwidth=5"),
    "directories": text("a/b/c/d.cpp", "line,fndirs=2,fnwidth=40"),
    "negativeNumbers": text("a/b.cpp", "fndirs=-1,fnwidth=-7,line"),
    "hugeNumbers": text("a/b.cpp", "fndirs=99999999999,fnwidth=-99999999999"),
    "wideField": text("a/b.cpp", "fndirs=2147483647,fnwidth=2147483647,line"),
    "noNumbers": text("/", "fndirs=x,fnwidth=,line"),
    "withoutValues": text("//a", "show,hide,fndirs,fnwidth"),
    "showAll": text("a", "show=all,hide=x,show=y"),
    "hideAll": text("a", "show=x,hide=all", "show=aaaa"),
    "off": text("a", "off,on,off"),
    "switches": text("a", "noprefix,line,pid,noindent,printlevels", "nopid,prefix"),
    "reset": text("a/b", "pid,line,fndirs=3,show=x,off,reset"),
    "unknownToken": text("a", "line,LINE,noline"),
    "emptyPieces": text("a", "line,,pid"),
    "longUnknownToken": text("a", "x" * 180),
}

DT_TEXT = {
    "oneRate": b"\0" + text("1001 30000 1001", "0 25 1", "-7 25 1"),
    "twoRates": b"\0" + text("30 30 1", "1 1 1", "48000 48000 1", "2 60 2"),
    "blanks": b"\0" + text("  1   2   3  ", "1\t 2\t3 4 5", "\t1 \t2 \t3"),
    "missingFields": b"\0" + text("", "1", "1 2", "1 2 ", " "),
    "noDigits": b"\0" + text("x 1 1", "1 x 1", "1 1 x", "1 - 1", "1 1 +"),
    "digitsThenText": b"\0" + text("1x 2y 3z", "1.5 2.5 3.5"),
    "zeros": b"\0" + text("1 0 1", "1 1 0", "1 0 0", "0 1 1"),
    "negativeRates": b"\0" + text("5 -30 1", "5 30 -1", "5 -30 -1", "-5 30 1"),
    "endsOfRange": b"\0" + text("1 2147483647 1", "1 1 2147483647", "1 -2147483648 1"),
    "smallestDenominator": b"\0" + text("1 1 -2147483648", "1 -2147483648 -2147483648"),
    "beyondRange": b"\0" + text("1 2147483648 1", "1 1 2147483648", "1 -2147483649 1"),
    "rangeErrorBefore": b"\1" + text("1 2147483647 1", "1 1 -2147483648", "1 30 1"),
    "countsBeyond": b"\0" + text("9223372036854775808 1 1", "-9223372036854775809 30000 1001"),
    "smallestCountTurned": b"\0" + text("14 1 1", "-9223372036854775808 3 -1"),
    "longDigits": b"\0" + text("1" * 40 + " " + "0" * 30 + "30 1"),
    "productsWrap": b"\0" + text("7 65536 1", "7 65536 3", "9 1000001 7", "9 1 1000003"),
}

TEST_FILE = {
    "twoGroups": text("Lookup 3 -size 4096", "A 1", ""),
    "withoutLineFeed": text("A 2 x"),
    "blanks": text("  A   1  x   y  ", "   ", "", "Lookup 1"),
    "tabIsACharacter": text("A\t1"),
    "negativeCycles": text("A -1", "Lookup 1"),
    "zeroCycles": text("A 0"),
    "noCycles": text("A"),
    "noNumber": text("A abc"),
    "manyCycles": text("A 2147483647", "Lookup 1"),
    "beyondInt": text("A 99999999999999999999", "A -99999999999999999999"),
    "unknownGroup": text("A 1", "Other 1"),
    "longestName": text("L" * 47 + " 1"),
    "nameTooLong": text("L" * 48 + " 1"),
    "veryLongName": text("L" * 128 + " 1"),
    "sixteenArguments": text("A 1 " + " ".join("abcdefghijklmnop")),
    "seventeenArguments": text("A 1 " + " ".join("abcdefghijklmnopq")),
    "longestLine": text("A 1 " + "x" * 251, "A 1"),
    "lineTooLong": text("A 1 " + "x" * 252, "A 1"),
    "fullOfGroups": b"A -1\n" * 128,
    "oneLineTooMany": b"A -1\n" * 128 + b"\n",
    "nulInLine": b"A 1\0 x\n\0A 1\nA 1 y",
    "carriageReturns": b"A 1 x\r\n\r\nLookup 1 \r\r\nA 1 \rz\r",
    "longestLineWithReturn": b"A 1 " + b"x" * 251 + b"\r\nA 1\r\n",
    "lineWithReturnTooLong": b"A 1 " + b"x" * 252 + b"\r\nA 1\r\n",
    "nulBehindReturn": b"A 1 x\r\0y\nA 1\0" + b"z" * 252 + b"\nA 1\n",
}

KNOWN_LEAKS = {
    "noList": text("main", "", ""),
    "oneEntry": text("foo", "bar", "", "KNOWNLEAK foo bar ENDL"),
    "secondDiffers": text("foo", "baz", "", "KNOWNLEAK foo bar ENDL"),
    "patternIsLonger": text("foo", "", "KNOWNLEAK foobar ENDL"),
    "frameIsLonger": text("foobar", "", "KNOWNLEAK foo ENDL"),
    "secondEntry": text("foo", "", "KNOWNLEAK bar ENDL KNOWNLEAK foo ENDL"),
    "withoutEnd": text("foo", "", "KNOWNLEAK foo"),
    "withoutPatterns": text("foo", "", "KNOWNLEAK ENDL"),
    "blankAtEnd": text("foo", "", "KNOWNLEAK foo "),
    "wordAlone": text("foo", "", "KNOWNLEAK"),
    "wordInWord": text("foo", "", "KNOWNLEAKNOWNLEAK foo ENDL"),
    "entryInEntry": text("foo", "", "KNOWNLEAK KNOWNLEAK foo ENDL"),
    "stackTooShort": text("foo", "", "KNOWNLEAK foo bar ENDL"),
    "noFrames": text("", "KNOWNLEAK foo ENDL"),
    "doubleBlank": text("foo", "bar", "", "KNOWNLEAK foo  bar ENDL"),
}

MAP_LINES = {
    "library": text("1000-2000 r--p 00000000 08:01 17    /lib/a.so",
                    "2000-3000 r-xp 00001000 08:01 17    /lib/a.so", ""),
    "twoLibraries": text("1000-2000 r-xp 0 08:01 17 /a", "3000-4000 r-xp 0 08:01 18 /b"),
    "memoryBetween": text("1000-2000 r-xp 0 08:01 17 /a", "2000-3000 rw-p 0 00:00 0",
                          "3000-4000 rw-p 0 08:01 17 /a"),
    "notExecutable": text("1000-2000 r--p 0 08:01 17 /a", "2000-3000 rw-s 0 08:01 18 /b"),
    "marks": text("1000-2000 rwxp 0 00:00 0 [heap]", "f000-f100 r-xp 0 00:00 0 [vdso]"),
    "backwards": text("3000-4000 r-xp 0 08:01 17 /a", "1000-2000 r-xp 0 08:01 18 /b"),
    "highestAddress": text("ffffffffff600000-ffffffffffffffff --xp 0 00:00 0 /x"),
    "beyondAddress": text("1-10000000000000000 r-xp 0 08:01 17 /a",
                          "0000000000000000001-2 ---p 0 0 0"),
    "noLines": text("", " ", "-", "1", "1-", "1-2", "1-2 ", "2-1 r-xp 0 0:0 1 /a", "x-y r-xp"),
    "missingFields": text("1-2 r-xp", "1-2 r-xp 0", "1-2 r-xp 0 08:01", "1-2 rxp 0 08:01 1 /a"),
    "blanksInPath": text("1-2 r-xp 0 08:01 1 /a b  c (deleted)", "2-2 rwxp 0 08:01 1 /a b"),
    "upperCase": text("ABC-DEF r-xp 0 08:01 1 /a", "0xF-0xFF r-xp 0 08:01 1 /a"),
}

FILE_PATH = {
    "relative": text("a/b", "c.txt"),
    "absoluteElement": text("a", "/b"),
    "separatorAtEnd": text("a/", "b/"),
    "points": text("a/./b/../c", "../../x/./"),
    "root": text("/", ".."),
    "current": text(".", "."),
    "parent": text("..", "../.."),
    "empty": text("", ""),
    "doubleSeparators": text("//a///b//", "//c//"),
    "drive": text("c:\\x\\y.z", "c:"),
    "share": text("\\\\host\\share", "a\\b"),
    "driveOnly": text("c:", "\\x"),
    "extensions": text("a.b/c", ".profile"),
    "manyPoints": text("...", "a..b"),
    "hiddenDirectory": text("/.a/.b.", "x.y.z"),
    "element": text("/usr", "lib"),
}

ENDS, TAKE, RESET = b"\1", b"\0", b"\2"


def inserted(piece):
    return b"\7" + piece + b"\n"


LOG_STREAM = {
    "oneString": b"\3" + inserted(b"hello") + ENDS + TAKE,
    "threePieces": b"\2" + inserted(b"one") + inserted(b"much too long") + inserted(b"3") + ENDS,
    "emptyString": b"\2" + inserted(b"") + ENDS + TAKE + TAKE,
    "endsAlone": b"\0" + ENDS * 5 + TAKE * 5,
    "exactlyFull": b"\1" + inserted(b"1234567") + ENDS + TAKE + inserted(b"12") + ENDS + TAKE,
    "terminatorPends": b"\1" + ENDS + inserted(b"12345") + ENDS * 3 + TAKE + inserted(b"") + ENDS,
    "wraps": b"\2" + (inserted(b"12345") + ENDS + TAKE) * 6,
    "fullThenMore": b"\0" + inserted(b"abc") + inserted(b"d") + ENDS + b"\3e" + TAKE + ENDS,
    "flags": b"\3" + RESET + inserted(b"") + RESET + ENDS + RESET,
    "numbers": b"\6" + b"".join(bytes([4 + 8 * k]) + b"\xff" * 8 for k in range(11)) + ENDS,
    "doubles": b"\7" + b"".join(b"\x44" + struct.pack("<d", x) for x in (0.1, -1e300)) + ENDS,
    "characters": b"\3" + b"\3a\3\0\x83b\x85\5" + ENDS + TAKE,
    "longTexts": b"\7" + b"\xfe\xff" * 6 + ENDS + TAKE + b"\xfe\xff" * 6 + ENDS + TAKE,
}


def event(piece):
    return b"\0" + b"\x0b" + piece + b"\n" + b"\1"


QUEUE_OPERATIONS = {
    "oneEvent": b"\x0c\1" + event(b"text") + b"\2",
    "overflowOfEntries": b"\x14\1" + event(b"a") * 6 + b"\2" * 6 + event(b"b"),
    "overflowOfText": b"\5\0" + event(b"abcdef") * 3 + b"\2" + event(b"x") + b"\2\2",
    "lossAfterLoss": b"\x14\0" + b"\x09" * 8 + b"\2\x09\x09\2\x09\x09\2\2\2",
    "consumedMark": b"\4\0" + b"\x09" * 4 + b"\2" * 4 + b"\x09" * 4,
    "withoutText": b"\x0c\1\0\1\0\x08\1" + event(b"x") + b"\2",
    "emptyText": b"\x0c\0" + event(b"") + b"\2",
    "twoStrings": b"\x0c\0\0\x0bone\n\x08\x0btwo\n\x08\1\2" + event(b"three"),
    "emptyThenMore": b"\x0c\0\0\x0b\n\x08\x0btwo\n\1\2",
    "suppressed": b"\x0c\0\3\3" + event(b"a") + b"\4" + event(b"b") + b"\4" + event(b"c"),
    "nestedInsertion": b"\x0c\1\0\5\x0bab\n\0\0\1\x0bcd\n\6\2",
    "cancelled": b"\x0c\0\0\5\x0bab\n\7" + event(b"c") + b"\0\x0bd\n\x08\7\2",
    "wraps": b"\5\1" + (event(b"abc") + b"\2") * 9,
    "addTwice": b"\x0c\0" + event(b"a") + b"\1\1\2",
    "longText": b"\x1c\0" + (b"\0\x0a\xff\1" * 4 + b"\2\2") * 2,
}

ADD_QUEUE, COMMIT_AGAIN, END_BATCH = b"\0", b"\7", b"\x0a"


def queue(sizes=0, entry=0, characters=0):
    return ADD_QUEUE + bytes([sizes, entry, characters])


def logged(number, piece, ticks=5, level=3):
    return b"\1" + bytes([number, level, ticks]) + piece + b"\n"


def logged_long(number, piece, dots=0, back=0, ticks=5, level=3):
    return b"\3" + bytes([number, level, ticks, back]) + piece + b"\n" + bytes([dots])


def lost(number, count):
    return b"\4" + bytes([number, count - 1])


def lost_without_entry(number, count):
    return b"\5" + bytes([number, count - 1])


def batch(most):
    return b"\6" + bytes([most])


def moved(number):
    return b"\x08" + bytes([number])


def spoiled(area, word, number):
    return b"\x0e" + bytes([area, word]) + struct.pack("<Q", number)


# The areas of a map: the header, the batches, the table of queues, the first queue's positions and
# its entries. With WIDE, eight bytes are written there and not four.
HEADER, BATCH_0, BATCH_1, TABLE, POSITIONS, ENTRIES, WIDE = 0, 1, 5, 2, 3, 7, 128
STATE, QUEUE_COUNT = 18, 24

TWO_QUEUES = (queue() + queue(1, 3, 4) + logged(0, b"a") + logged(1, b"bcd") + logged(0, b"") +
              logged(1, b"e") + lost(0, 7) + logged(0, b"f"))

LEFT_MAP = {
    "noQueue": b"",
    "oneEvent": queue() + logged(0, b"text"),
    "twoQueues": TWO_QUEUES,
    "longTexts": queue() + logged_long(0, b"x", 252) + queue(4, 0, 9) + logged_long(1, b"y", 200),
    "wraps": queue(0, 2, 5) + b"".join(logged(0, b"abc%d" % i) for i in range(9)),
    "timeGoesBack": queue() + queue() + logged(1, b"a") + logged_long(0, b"b", 0, 90) +
                    logged(1, b"c"),
    "losses": queue() + lost(0, 3) + lost(0, 200) + logged(0, b"a") + lost_without_entry(0, 9),
    "lossesAlone": queue() + lost_without_entry(0, 1),
    "levels": queue() + b"".join(logged(0, b"l", 1, i) for i in range(7)),
    "batch": TWO_QUEUES + batch(2),
    "batchOfAll": TWO_QUEUES + batch(99) + logged(0, b"later") + logged(1, b"later"),
    "batchWritten": TWO_QUEUES + batch(2) + COMMIT_AGAIN,
    "reportedMoved": TWO_QUEUES + batch(3) + COMMIT_AGAIN + moved(0),
    "textMoved": TWO_QUEUES + batch(3) + COMMIT_AGAIN + moved(0) * 2,
    "oneMoved": TWO_QUEUES + batch(2) + COMMIT_AGAIN + moved(0) * 3 + logged(0, b"new"),
    "allMoved": TWO_QUEUES + batch(2) + COMMIT_AGAIN + moved(0) * 3 + moved(1) * 3,
    "secondBatch": TWO_QUEUES + batch(2) + COMMIT_AGAIN + moved(0) * 3 + moved(1) * 3 + END_BATCH +
                   logged(1, b"g") + batch(1),
    "batchOfLosses": queue() + lost(0, 4) + logged(0, b"a") + batch(1) + COMMIT_AGAIN +
                     moved(0) * 3,
    "badMagic": TWO_QUEUES + spoiled(HEADER, 0, 0),
    "otherVersion": TWO_QUEUES + spoiled(HEADER, 2, 2),
    "badState": TWO_QUEUES + spoiled(HEADER | WIDE, STATE, 7),
    "tooManyQueues": TWO_QUEUES + spoiled(HEADER, QUEUE_COUNT, 16385),
    "mostQueues": TWO_QUEUES + spoiled(HEADER, QUEUE_COUNT, 16384),
    "badCounts": TWO_QUEUES + batch(2) + spoiled(BATCH_1, 0, 9) + spoiled(BATCH_1, 1, 1025),
    "badPositions": TWO_QUEUES + batch(2) + spoiled(BATCH_1, 69, 0xFFFFFFFF),
    "sameQueueTwice": TWO_QUEUES + batch(2) + spoiled(BATCH_1, 74, 0),
    "batchThatIsNone": TWO_QUEUES + spoiled(HEADER | WIDE, STATE, 5),
    "manyLines": TWO_QUEUES + batch(2) + b"\x0b\1" + spoiled(BATCH_1, 2, 992),
    "tooManyLines": TWO_QUEUES + batch(2) + b"\x0b\1" + spoiled(BATCH_1, 2, 993),
    "blockBeyond": TWO_QUEUES + spoiled(TABLE | WIDE, 0, 1 << 47),
    "ringIsLarge": TWO_QUEUES + spoiled(TABLE, 4, 1 << 26) + spoiled(TABLE, 6, 1 << 26),
    "ringIsNone": TWO_QUEUES + spoiled(TABLE, 3, 0),
    "notUsable": TWO_QUEUES + spoiled(TABLE, 5, 2),
    "endBeyond": TWO_QUEUES + spoiled(POSITIONS, 32, 64),
    "textBeyond": TWO_QUEUES + spoiled(POSITIONS, 64, 32767),
    "badEntry": TWO_QUEUES + spoiled(ENTRIES, 5, 99),
    "oneQueueOften": TWO_QUEUES + b"\x0c\xff",
    "oneQueueOftenInABatch": TWO_QUEUES + batch(2) + b"\x0c\xff",
    "cut": TWO_QUEUES + b"\x0d\xf8\0",
    "cutInTheTable": TWO_QUEUES + b"\x0d\x20\0",
    "raw": b"\x0fZULOGMAP" + little(1),
}


def origin_line(wall="2026-11-22T22:00:00.000000000Z", host="name", boot="3f2b", rate="1000000000"):
    return ("===== Clock Origin: 0000000000 0000012345 is %s, %s ticks per second, process 4711 "
            "started 2026-11-22T21:59:59.000000000Z, host %s, boot %s =====" %
            (wall, rate, host, boot)).encode()


def origin_parts(start, tick, wall, rate, names, process=4711, time=99):
    return b"\2" + struct.pack("<QQqQQqQ", start, tick, wall, rate, process, wall, time) + names


LINE_TEXT = {
    "plainText": b"\0an ordinary text",
    "backslashes": b"\0C:\\temp\\x41 \\\\ \\u202e\\",
    "controls": b"\0\1\x1b[31m\r\x7f\0end",
    "lineFeeds": b"\0one\ntwo\n\n\tthree\n",
    "tabs": b"\0\tfirst\tsecond",
    "banner": b"\0===== Clock Origin: 1",
    "bannerBehindLineFeed": b"\0a\n===== Clock Origin: 1",
    "bidirectional": "\0a\u202eb\u2066c\u061cd\u200f".encode(),
    "separators": "\0a\u2028b\u2029c\u0085d".encode(),
    "utf8": "\0\u00e9\u20ac\U0001f600\\\u00e9".encode(),
    "notUtf8": b"\0\xc0\x80\xed\xa0\x80\xf5\x80\x80\x80\xe2\x80 \xff\\\xff",
    "long": b"\0" + b"0123456" * 20 + b"\\" + b"\x80" * 9,
    "escapes": b"\1\\x1b\\u202e\\\\\\xZZ\\u\\x\\ud800\n\tmore\nraw",
    "originLine": b"\1" + origin_line() + b"\n",
    "originOfNobody": b"\1" + origin_line(host="-", boot="\\x2d"),
    "originEscapes": b"\1" + origin_line(host="a\\x2c b\\x0a", boot=" ====="),
    "originBefore1970": b"\1" + origin_line(wall="1677-09-21T00:12:43.145224192Z"),
    "originWithoutRate": b"\1" + origin_line(rate="0"),
    "originBadDate": b"\1" + origin_line(wall="2026-13-40T25:00:00.000000000Z"),
    "originLeadingZero": b"\1" + origin_line(rate="01000000000"),
    "originParts": origin_parts(5, 12345, 1795384800000000000, 1000000000, b"host\0boot"),
    "originExtremes": origin_parts(9, 3, -(1 << 63), 1000000000000000000, b"-\0"),
    "originLatest": origin_parts(0, 1 << 63, (1 << 63) - 1, 1, b", boot =====\0a, boot b ====="),
    "timeBefore": origin_parts(0, 1 << 63, 0, 1, b"", time=0),
    "timeFarBefore": origin_parts(0, (1 << 63) + 1, -(1 << 63), 1000, b"", time=5),
    "timeFarBehind": origin_parts(0, 0, 1795384800000000000, 1, b"", time=1 << 62),
    "originBytes": origin_parts(1, 2, -1, 3, b"\xff\\\n\t,\0\xe2\x80\xae\0"),
}

NUMBERS = {
    name: (line.encode("latin-1") + b"\n" + struct.pack("<Q", bits))
    for name, line, bits in [
        ("zero", "0", 0),
        ("negativeZero", "-0", 1 << 63),
        ("blanksAndSign", " \t\v+12", 0x3FF8000000000000),
        ("intBeyond", "2147483648", 0x41DFFFFFFFC00000),
        ("longBeyond", "-99999999999999999999", 0x7FEFFFFFFFFFFFFF),
        ("twoSigns", "--1", 1),
        ("decimal", "1.5e3x", 0x0010000000000000),
        ("pointFirst", ".5", 0x000FFFFFFFFFFFFF),
        ("pointAlone", ".", 0x7FF0000000000000),
        ("exponentAlone", "1e+", 0xFFF0000000000000),
        ("tooGreat", "1e400", 0x7FF8000000000000),
        ("tooSmall", "-1e-400", 0x4330000000000000),
        ("smallest", "4.9e-324", 0x43F0000000000000),
        ("longExponent", "1e99999999999999999999", 0x43EFFFFFFFFFFFFF),
        ("manyZeros", "0." + "0" * 60 + "1e60", 0x3EB0C6F7A0B5ED8D),
        ("hexadecimal", "0x1.8p3", 0x3FEFFFFFFFFFFFFF),
        ("hexadecimalTooSmall", "0x0.1p-1080", 0x3FDFFFFF79C842FA),
        ("hexadecimalAlone", "0x", 0x4340000000000000),
        ("infinity", "-Infinity", 0xC08F400000000000),
        ("notANumber", "nan(12)", 0xFFF8000000000001),
    ]
}


def instance(name, *values):
    text16 = name.encode("utf-16-le") + b"\0\0"
    text16 += b"\0" * (-len(text16) % 8)
    return (little(24 + len(text16), 0, 0, 0, 24, len(text16)) + text16 +
            little(4 + 4 * len(values), *values))


def counter(index, kind, offset, length=40):
    return little(length, index, 0, 0, 0, 0, 0, kind, 0, offset)


def object_type(index, counters, instances, rest, header=64):
    definitions = b"".join(counters)
    end = header + len(definitions)
    return little(end + len(rest), end, header, index, 0, 0, 0, 0, len(counters), 0,
                  instances & 0xFFFFFFFF, 0, 0, 0, 0, 0) + definitions + rest


def block(*objects, header=88, total=None):
    body = b"".join(objects)
    length = header + len(body) if total is None else total
    return little(0, 0, 0, 0, 0, length, header) + b"\0" * 60 + body


def asked(data, index=1, of=2, name=b"\0"):
    return bytes([index, of]) + name + data


PLAIN = object_type(1, [counter(2, 0, 4), counter(3, 0x100, 8)], 0, little(16, 7, 8, 9))
NAMED = object_type(1, [counter(2, 0, 4)], 2, instance("b", 5) + instance("a", 6))

PERFORMANCE_DATA = {
    "value32": asked(block(PLAIN)),
    "value64": asked(block(PLAIN), of=3),
    "otherCounter": asked(block(PLAIN), of=4),
    "otherObject": asked(block(PLAIN), index=4),
    "secondObject": asked(block(object_type(9, [], 0, b""), PLAIN)),
    "instanceByName": asked(block(NAMED), name=b"a"),
    "instanceWithoutName": asked(block(NAMED)),
    "instanceMissing": asked(block(NAMED), name=b"x"),
    "noInstancesYet": asked(block(object_type(1, [counter(2, 0, 4)], -1, little(8, 3)))),
    "variableSize": asked(block(object_type(1, [counter(2, 0x300, 4)], 0, little(8, 3)))),
    "withoutValue": asked(block(object_type(1, [counter(2, 0x200, 4)], 0, little(8, 3)))),
    "offsetBeyond": asked(block(object_type(1, [counter(2, 0x100, 4)], 0, little(8, 3)))),
    "offsetHuge": asked(block(object_type(1, [counter(2, 0, 0xFFFFFFFF)], 0, little(8, 3)))),
    "lengthZero": asked(block(object_type(1, [counter(9, 0, 4, 0)], 0, little(0)))),
    "totalTooShort": asked(block(PLAIN, total=100)),
    "totalTooLong": asked(block(PLAIN, total=0xFFFFFFFF)),
    "headerTooShort": asked(block(PLAIN)[:24] + little(8) + block(PLAIN)[28:]),
    "cutOff": asked(block(PLAIN)[:-20]),
    "noBlock": asked(b"\1\2\3"),
}

TICKS = b"0000000000 %010d (0x00000abc) %s\n"
DATED = b"%s-11-22T22:10:51.123456Z 4711 (0x00000abc) %s\n"
STARTUP = b"===== Message Logger Startup =====\n"
DATE = b"===== Started on Sun Nov 22 23:00:00 2026\n\n"
RATE = b"===== Clock Frequency: 0.000001000\n"
STOP = b"===== Message Logger Stopped =====\n"
RECOVERED = (b"===== Recovered: events of process 4711 =====\n",
             b"===== Recovered: end of the events of process 4711 =====\n")
NOT_WRITTEN = b"===== Not Written: 17 events since 2026-11-22T22:10:51.123456Z =====\n"
RAW, COLOURED, TERMINAL, IN_TICKS, RELATIVE, STRETCHED = 1, 2, 4, 8, 16, 224
# With STRETCHED, a part of a line that is longer than the longest.
LONG = b"\xff"


# How a log is read: which levels are not skipped, which is where it is cut as well, and the sizes
# of the pieces in which it comes.
def read(log, flags=0, levels=127, sizes=(1,)):
    return bytes([flags, levels, len(sizes) - 1, *(size - 1 for size in sizes)]) + log


WHOLE = (STARTUP + DATE + RATE + origin_line() + b"\n" + TICKS % (5, b"Warning: Orders one") +
         TICKS % (9, b"Internal Error: Stock two") + TICKS % (9, b"Event overflow [12]"))

LOG_FILE = {
    "ticks": read(WHOLE + STOP, RAW, 127, (7, 64)),
    "onlyErrors": read(WHOLE + NOT_WRITTEN + STOP, 0, 7, (30, 1, 200)),
    "lowLevels": read(WHOLE + b"torn\n" + NOT_WRITTEN, 0, 112),
    "restarts": read(WHOLE + WHOLE + STOP + STARTUP + b"plain text\n\tmore\n", COLOURED, 100),
    "recovered": read(WHOLE + RECOVERED[0] + origin_line() + b"\n" + TICKS % (2, b"Error: A b") +
                      RECOVERED[1] + b"no line\n", TERMINAL | RELATIVE),
    "continued": read(TICKS % (5, b"Error: Orders one\n\ttwo\n\t\n\tthree") +
                      TICKS % (6, b"Tracing: Orders four"), COLOURED | IN_TICKS, 64, (9,)),
    "continuedBanner": read(STARTUP + DATE + b"\tone\n" + RATE + b"\ttwo\n"),
    "continuedStart": read(STARTUP + b"\tone\n" + DATE + RATE + b"\ttwo\n"),
    "local": read(b"2026-11-22T23:10:51.123456+01:00 4711 (0x00000abc) Warning: Orders text\n" +
                  DATED % (b"2026", b"Profiling: Orders \\x1b text"), RAW | TERMINAL),
    "timesFarApart": read(DATED % (b"1718", b"Profiling: Orders text") +
                          DATED % (b"2026", b"Profiling: Orders text"), RELATIVE),
    "plain": read(STARTUP + b"Orders text\nEvent overflow [3]\n" + STOP, TERMINAL),
    "torn": read((TICKS % (7, b"Error: A b"))[:31], RAW, 255),
    "tornMark": read(STARTUP[:-1]),
    "garbage": read(b"\0\1\xff\xc2\x9b\x1b[31m\r\n\n\t\n\"a,b\"\r\n</script>\r", TERMINAL),
    "levelAlone": read(b"0) Error: \n" + TICKS % (7, b"Error: A b") + b"0) Error: \n", 0, 4),
    "carriageReturns": read(WHOLE.replace(b"\n", b"\r\n") + b"a\rb\r\r\n", 0, 99, (3,)),
    "separators": read(TICKS % (7, "Error: A \u202eb\u2028c\u0085d".encode()), TERMINAL),
    "escapes": read(TICKS % (7, b"Error: A \\x1b[31m \\u202e \\\\x41"), RAW | TERMINAL),
    "escapesForPrograms": read(TICKS % (7, b"Error: A \\x0a\\x22,\\xff \\u202e"), RAW),
    "onlyLineFeeds": read(b"\n\n\n"),
    "longLine": read(b"a\n" + LONG * 7 + b"\n" + TICKS % (7, b"Error: A b"), STRETCHED, 9, (256,)),
    "longEvent": read(TICKS % (7, b"Error: A b" + LONG) + b"\t" + LONG * 2 + b"\n\tmore\nlast",
                      STRETCHED, 127, (100, 3)),
    "longContinuations": read(TICKS % (7, b"Error: A b") + (b"\t" + LONG + b"\n") * 4, STRETCHED,
                              127, (77,)),
    "longMark": read(STARTUP + b"===== Started on " + LONG * 4 + b"\n\n" + STOP, STRETCHED),
}



# A byte for the one that is changed, and the text of a cursor, here with its checksum or without:
# the target adds one.
def fnv(content):
    value = 0xCBF29CE484222325
    for byte in content:
        value = (value ^ byte) * 0x100000001B3 % (1 << 64)
    return value


def cursor(version, *lines, changed=128, is_sealed=False):
    content = b"zulog cursor %d\n" % version + b"".join(line + b"\n" for line in lines)
    if is_sealed:
        content += b"sum %016x\n" % fnv(content)
    return bytes([changed]) + content


TO = b"to relp://host:20514"
PLACE = b"at 2049 131 4096 00c0ffee00c0ffee 81920 0ddba11fadedcafe /var/log/a.log"
OLD_PLACE = b"at 2049 131 4096 00c0ffee00c0ffee 81920 /var/log/a.log"

CURSOR = {
    "empty": cursor(2, TO),
    "sealed": cursor(2, TO, PLACE, changed=255, is_sealed=True),
    "severalPlaces": cursor(2, TO, PLACE, b"at 1 2 0 0000000000000000 0 - /var/log/b.log"),
    "notInOrder": cursor(2, TO, b"at 1 2 0 0000000000000000 0 - /var/log/b.log", PLACE),
    "samePlaceTwice": cursor(2, TO, PLACE, PLACE),
    "largestNumbers": cursor(2, TO, b"at 18446744073709551615 18446744073709551615 4096 "
                                    b"ffffffffffffffff 18446744073709551615 ffffffffffffffff /x"),
    "numberTooLarge": cursor(2, TO, b"at 18446744073709551616 0 0 0000000000000000 0 - /x"),
    "headTooLarge": cursor(2, TO, b"at 1 2 4097 0000000000000000 0 - /x"),
    "leadingZero": cursor(2, TO, b"at 01 2 0 0000000000000000 0 - /x"),
    "upperCase": cursor(2, TO, b"at 1 2 0 00000000000000FF 0 - /x"),
    "shortHash": cursor(2, TO, b"at 1 2 0 0 0 - /x"),
    "escapes": cursor(2, b"to a\\\\b\\nc", b"at 1 2 0 0000000000000000 0 - \\n\\\\ \xff\0"),
    "badEscape": cursor(2, TO, b"at 1 2 0 0000000000000000 0 - /x\\"),
    "noName": cursor(2, TO, b"at 1 2 0 0000000000000000 0 - "),
    "earlier": cursor(1, TO, OLD_PLACE, changed=3),
    "earlierSealed": cursor(1, TO, OLD_PLACE, changed=200, is_sealed=True),
    "earlierWithHash": cursor(1, TO, PLACE),
    "presentWithoutHash": cursor(2, TO, OLD_PLACE),
    "newer": cursor(3, TO),
    "otherProgram": b"\0cursor of something\n",
    "moreBehind": cursor(2, TO, is_sealed=True) + b"more\n",
    "cutOff": cursor(2, TO, PLACE, is_sealed=True)[:-1],
    "sumOnly": b"\0sum 0000000000000000\n",
}

ALL = {
    "argAliases": ARG_ALIASES,
    "cursor": CURSOR,
    "dtText": DT_TEXT,
    "filePath": FILE_PATH,
    "groupLevels": GROUP_LEVELS,
    "knownLeaks": KNOWN_LEAKS,
    "leftMap": LEFT_MAP,
    "lineText": LINE_TEXT,
    "logFile": LOG_FILE,
    "logSetup": LOG_SETUP,
    "logStream": LOG_STREAM,
    "mapLines": MAP_LINES,
    "numbers": NUMBERS,
    "optionParser": OPTION_PARSER,
    "performanceData": PERFORMANCE_DATA,
    "queueOperations": QUEUE_OPERATIONS,
    "testFile": TEST_FILE,
    "traceOptions": TRACE_OPTIONS,
}

for target, files in ALL.items():
    directory = CORPORA / target
    directory.mkdir(parents=True, exist_ok=True)
    for name, content in files.items():
        (directory / name).write_bytes(content)

-- A field without a width is refused by the conversion itself, whose message has no location.
string.unpack("I", "abcd")
-- expect error bare: stoi

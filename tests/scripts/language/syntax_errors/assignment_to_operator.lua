-- expect error 2:9: invalid assignment target
(a + b) = 1

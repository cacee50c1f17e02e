-- Of several operators the failing one is reported.
x = (1 + 2
  - 3)
  * (4
    / {}  -- expect error: operator '/' expects numbers
    + 5)
  - 6

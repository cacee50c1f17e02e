-- Scopes with few and with very many locals, parameters, arguments and results.
function eight(a)
  local b, c, d, e, f, g, h = a + 1, a + 2, a + 3, a + 4, a + 5, a + 6, a + 7
  return a + b + c + d + e + f + g + h
end
function nine(a)
  local b, c, d, e, f, g, h, i = a + 1, a + 2, a + 3, a + 4, a + 5, a + 6, a + 7, a + 8
  return a + b + c + d + e + f + g + h + i
end
print(eight(1), nine(1))  -- expect: 36	45

-- The same with variables that a closure shares.
function eightShared(a)
  local b, c, d, e, f, g, h = 2, 3, 4, 5, 6, 7, 8
  return (function() h = h + 1 return a + b + c + d + e + f + g + h end)(), h
end
function nineShared(a)
  local b, c, d, e, f, g, h, i = 2, 3, 4, 5, 6, 7, 8, 9
  return (function() i = i + 1 return a + b + c + d + e + f + g + h + i end)(), i
end
print(eightShared(1), nineShared(1))  -- expect: 37	46	10

-- Three hundred locals in one function; the last ones are as good as the first.
function many(v1)
  local v2, v3, v4, v5, v6, v7, v8, v9, v10, v11,
    v12, v13, v14, v15, v16, v17, v18, v19, v20, v21 =
    v1 + 1, v1 + 2, v1 + 3, v1 + 4, v1 + 5, v1 + 6, v1 + 7, v1 + 8, v1 + 9, v1 + 10,
    v1 + 11, v1 + 12, v1 + 13, v1 + 14, v1 + 15, v1 + 16, v1 + 17, v1 + 18, v1 + 19, v1 + 20
  local v22, v23, v24, v25, v26, v27, v28, v29, v30, v31,
    v32, v33, v34, v35, v36, v37, v38, v39, v40, v41 =
    v1 + 21, v1 + 22, v1 + 23, v1 + 24, v1 + 25, v1 + 26, v1 + 27, v1 + 28, v1 + 29, v1 + 30,
    v1 + 31, v1 + 32, v1 + 33, v1 + 34, v1 + 35, v1 + 36, v1 + 37, v1 + 38, v1 + 39, v1 + 40
  local v42, v43, v44, v45, v46, v47, v48, v49, v50, v51,
    v52, v53, v54, v55, v56, v57, v58, v59, v60, v61 =
    v1 + 41, v1 + 42, v1 + 43, v1 + 44, v1 + 45, v1 + 46, v1 + 47, v1 + 48, v1 + 49, v1 + 50,
    v1 + 51, v1 + 52, v1 + 53, v1 + 54, v1 + 55, v1 + 56, v1 + 57, v1 + 58, v1 + 59, v1 + 60
  local v62, v63, v64, v65, v66, v67, v68, v69, v70, v71,
    v72, v73, v74, v75, v76, v77, v78, v79, v80, v81 =
    v1 + 61, v1 + 62, v1 + 63, v1 + 64, v1 + 65, v1 + 66, v1 + 67, v1 + 68, v1 + 69, v1 + 70,
    v1 + 71, v1 + 72, v1 + 73, v1 + 74, v1 + 75, v1 + 76, v1 + 77, v1 + 78, v1 + 79, v1 + 80
  local v82, v83, v84, v85, v86, v87, v88, v89, v90, v91,
    v92, v93, v94, v95, v96, v97, v98, v99, v100, v101 =
    v1 + 81, v1 + 82, v1 + 83, v1 + 84, v1 + 85, v1 + 86, v1 + 87, v1 + 88, v1 + 89, v1 + 90,
    v1 + 91, v1 + 92, v1 + 93, v1 + 94, v1 + 95, v1 + 96, v1 + 97, v1 + 98, v1 + 99, v1 + 100
  local v102, v103, v104, v105, v106, v107, v108, v109, v110, v111,
    v112, v113, v114, v115, v116, v117, v118, v119, v120, v121 =
    v1 + 101, v1 + 102, v1 + 103, v1 + 104, v1 + 105, v1 + 106, v1 + 107, v1 + 108, v1 + 109, v1 + 110,
    v1 + 111, v1 + 112, v1 + 113, v1 + 114, v1 + 115, v1 + 116, v1 + 117, v1 + 118, v1 + 119, v1 + 120
  local v122, v123, v124, v125, v126, v127, v128, v129, v130, v131,
    v132, v133, v134, v135, v136, v137, v138, v139, v140, v141 =
    v1 + 121, v1 + 122, v1 + 123, v1 + 124, v1 + 125, v1 + 126, v1 + 127, v1 + 128, v1 + 129, v1 + 130,
    v1 + 131, v1 + 132, v1 + 133, v1 + 134, v1 + 135, v1 + 136, v1 + 137, v1 + 138, v1 + 139, v1 + 140
  local v142, v143, v144, v145, v146, v147, v148, v149, v150, v151,
    v152, v153, v154, v155, v156, v157, v158, v159, v160, v161 =
    v1 + 141, v1 + 142, v1 + 143, v1 + 144, v1 + 145, v1 + 146, v1 + 147, v1 + 148, v1 + 149, v1 + 150,
    v1 + 151, v1 + 152, v1 + 153, v1 + 154, v1 + 155, v1 + 156, v1 + 157, v1 + 158, v1 + 159, v1 + 160
  local v162, v163, v164, v165, v166, v167, v168, v169, v170, v171,
    v172, v173, v174, v175, v176, v177, v178, v179, v180, v181 =
    v1 + 161, v1 + 162, v1 + 163, v1 + 164, v1 + 165, v1 + 166, v1 + 167, v1 + 168, v1 + 169, v1 + 170,
    v1 + 171, v1 + 172, v1 + 173, v1 + 174, v1 + 175, v1 + 176, v1 + 177, v1 + 178, v1 + 179, v1 + 180
  local v182, v183, v184, v185, v186, v187, v188, v189, v190, v191,
    v192, v193, v194, v195, v196, v197, v198, v199, v200, v201 =
    v1 + 181, v1 + 182, v1 + 183, v1 + 184, v1 + 185, v1 + 186, v1 + 187, v1 + 188, v1 + 189, v1 + 190,
    v1 + 191, v1 + 192, v1 + 193, v1 + 194, v1 + 195, v1 + 196, v1 + 197, v1 + 198, v1 + 199, v1 + 200
  local v202, v203, v204, v205, v206, v207, v208, v209, v210, v211,
    v212, v213, v214, v215, v216, v217, v218, v219, v220, v221 =
    v1 + 201, v1 + 202, v1 + 203, v1 + 204, v1 + 205, v1 + 206, v1 + 207, v1 + 208, v1 + 209, v1 + 210,
    v1 + 211, v1 + 212, v1 + 213, v1 + 214, v1 + 215, v1 + 216, v1 + 217, v1 + 218, v1 + 219, v1 + 220
  local v222, v223, v224, v225, v226, v227, v228, v229, v230, v231,
    v232, v233, v234, v235, v236, v237, v238, v239, v240, v241 =
    v1 + 221, v1 + 222, v1 + 223, v1 + 224, v1 + 225, v1 + 226, v1 + 227, v1 + 228, v1 + 229, v1 + 230,
    v1 + 231, v1 + 232, v1 + 233, v1 + 234, v1 + 235, v1 + 236, v1 + 237, v1 + 238, v1 + 239, v1 + 240
  local v242, v243, v244, v245, v246, v247, v248, v249, v250, v251,
    v252, v253, v254, v255, v256, v257, v258, v259, v260, v261 =
    v1 + 241, v1 + 242, v1 + 243, v1 + 244, v1 + 245, v1 + 246, v1 + 247, v1 + 248, v1 + 249, v1 + 250,
    v1 + 251, v1 + 252, v1 + 253, v1 + 254, v1 + 255, v1 + 256, v1 + 257, v1 + 258, v1 + 259, v1 + 260
  local v262, v263, v264, v265, v266, v267, v268, v269, v270, v271,
    v272, v273, v274, v275, v276, v277, v278, v279, v280, v281 =
    v1 + 261, v1 + 262, v1 + 263, v1 + 264, v1 + 265, v1 + 266, v1 + 267, v1 + 268, v1 + 269, v1 + 270,
    v1 + 271, v1 + 272, v1 + 273, v1 + 274, v1 + 275, v1 + 276, v1 + 277, v1 + 278, v1 + 279, v1 + 280
  local v282, v283, v284, v285, v286, v287, v288, v289, v290, v291,
    v292, v293, v294, v295, v296, v297, v298, v299, v300 =
    v1 + 281, v1 + 282, v1 + 283, v1 + 284, v1 + 285, v1 + 286, v1 + 287, v1 + 288, v1 + 289, v1 + 290,
    v1 + 291, v1 + 292, v1 + 293, v1 + 294, v1 + 295, v1 + 296, v1 + 297, v1 + 298, v1 + 299
  v300 = v300 * 2
  return v1, v8, v9, v10, v64, v65, v128, v255, v256, v257, v299, v300
end
print(many(1))  -- expect: 1	8	9	10	64	65	128	255	256	257	299	600
print(many(1001))  -- expect: 1001	1008	1009	1010	1064	1065	1128	1255	1256	1257	1299	2600

-- Many locals across blocks, redeclared in each.
function blocks()
  local sum = 0
  for i = 1, 3 do
    local l0, l1, l2, l3, l4, l5, l6, l7, l8, l9 = i * 0, i * 1, i * 2, i * 3, i * 4, i * 5, i * 6, i * 7, i * 8, i * 9
    local l10, l11, l12, l13, l14, l15, l16, l17, l18, l19 = i * 10, i * 11, i * 12, i * 13, i * 14, i * 15, i * 16, i * 17, i * 18, i * 19
    local l20, l21, l22, l23, l24, l25, l26, l27, l28, l29 = i * 20, i * 21, i * 22, i * 23, i * 24, i * 25, i * 26, i * 27, i * 28, i * 29
    if i > 1 then
      local l0, l1, l29 = l0 + 1, l1 + 1, l29 + 1
      sum = sum + l0 + l1 + l29
    else
      local l29 = 1000
      sum = sum + l29
    end
    sum = sum + l29
  end
  return sum
end
print(blocks())  -- expect: 1330

-- Parameters and arguments: exactly, fewer, more.
function seven(a, b, c, d, e, f, g) return g, f, e, d, c, b, a end
print(seven(1, 2, 3, 4, 5, 6, 7))  -- expect: 7	6	5	4	3	2	1
print(seven(1, 2, 3))  -- expect: nil	nil	nil	nil	3	2	1
print(seven(1, 2, 3, 4, 5, 6, 7, 8, 9))  -- expect: 7	6	5	4	3	2	1
print(seven())  -- expect: nil	nil	nil	nil	nil	nil	nil
function fifty(p1, p2, p3, p4, p5, p6, p7, p8, p9, p10, p11, p12, p13, p14, p15, p16, p17, p18,
  p19, p20, p21, p22, p23, p24, p25, p26, p27, p28, p29, p30, p31, p32, p33, p34, p35, p36, p37,
  p38, p39, p40, p41, p42, p43, p44, p45, p46, p47, p48, p49, p50)
  return p50, p49, p48, p47, p46, p45, p44, p43, p42, p41, p40, p39, p38, p37, p36, p35, p34,
    p33, p32, p31, p30, p29, p28, p27, p26, p25, p24, p23, p22, p21, p20, p19, p18, p17, p16,
    p15, p14, p13, p12, p11, p10, p9, p8, p7, p6, p5, p4, p3, p2, p1
end
print(fifty(1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17, 18, 19, 20, 21, 22, 23,
  24, 25, 26, 27, 28, 29, 30, 31, 32, 33, 34, 35, 36, 37, 38, 39, 40, 41, 42, 43, 44, 45, 46,
  47, 48, 49, 50))
-- expect: 50	49	48	47	46	45	44	43	42	41	40	39	38	37	36	35	34	33	32	31	30	29	28	27	26	25	24	23	22	21	20	19	18	17	16	15	14	13	12	11	10	9	8	7	6	5	4	3	2	1

-- Fifty results travel through several calls, truncated only where a list goes on.
function results() return 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17, 18, 19, 20,
    21, 22, 23, 24, 25, 26, 27, 28, 29, 30, 31, 32, 33, 34, 35, 36, 37, 38, 39, 40, 41, 42, 43,
    44, 45, 46, 47, 48, 49, 50 end
function through() return results() end
function further() return 0, through() end
print(further())
-- expect: 0	1	2	3	4	5	6	7	8	9	10	11	12	13	14	15	16	17	18	19	20	21	22	23	24	25	26	27	28	29	30	31	32	33	34	35	36	37	38	39	40	41	42	43	44	45	46	47	48	49	50
print(fifty(results()))
-- expect: 50	49	48	47	46	45	44	43	42	41	40	39	38	37	36	35	34	33	32	31	30	29	28	27	26	25	24	23	22	21	20	19	18	17	16	15	14	13	12	11	10	9	8	7	6	5	4	3	2	1
print((further()), "end")  -- expect: 0	end
print(pcall(further))
-- expect: true	0	1	2	3	4	5	6	7	8	9	10	11	12	13	14	15	16	17	18	19	20	21	22	23	24	25	26	27	28	29	30	31	32	33	34	35	36	37	38	39	40	41	42	43	44	45	46	47	48	49	50
first, second, third = further()
print(first, second, third)  -- expect: 0	1	2
print(seven(further()))  -- expect: 6	5	4	3	2	1	0
print(seven("x", results()))  -- expect: 6	5	4	3	2	1	x
